#pragma once

#include "files/file_spec.h"
#include "platform/fmwrapper/fmwrapper.h"
#include "platform/quicktime/data_references.h"

namespace corvane {

/// The reference designates no file: memory, or an address.
inline constexpr std::int32_t kNotAFileReference = -2053;

/// The media layer's reference to the file that `spec` names, which need not exist; the layer's code.
std::int32_t DataReferenceOf(const XFileSpec& spec, qt::DataReference& reference);

/// The reference to the address in a text's first line ("http://…"); -43 for another text, or the layer's
/// code.
std::int32_t AddressReferenceOf(const FM_Data* parameter, qt::DataReference& reference);

/// The file that a reference designates: codes of XFileSpec's native paths, or kNotAFileReference.
std::int32_t FileOfDataReference(const qt::DataReference& reference, XFileSpec& spec);

} // namespace corvane
