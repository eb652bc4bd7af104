#pragma once

#include "files/file_spec.h"
#include "platform/quicktime/data_references.h"

namespace corvane {

/// The media layer's reference to the file that `spec` names, which need not exist; the layer's code.
std::int32_t DataReferenceOf(const XFileSpec& spec, qt::DataReference& reference);

} // namespace corvane
