// Path parameters of the functions.
#pragma once

#include "files/file_spec.h"
#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>

namespace corvane {

/// The parameter is a container with streams: there is no path, its bytes are what the caller may read.
inline constexpr std::int32_t kEmbeddedContainer = 555;

/// The item that a path parameter names: host path text without a path-type word, relative to the default
/// folder; a special-folder code, with or without a path after it; or a container's reference text, of which
/// the line with the absolute path counts. Codes of XFileSpec and ResolveSpecialFolder, or 555.
std::int32_t ResolvePathParameter(const FM_Data& parameter, XFileSpec& spec);

} // namespace corvane
