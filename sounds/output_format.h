#pragma once

#include "platform/quicktime/types.h"

#include <optional>
#include <string_view>

namespace corvane {

/// An exporter's format as scripts name it: four characters, or eight hexadecimal digits.
std::optional<OSType> ReadOutputFormat(std::string_view text);

} // namespace corvane
