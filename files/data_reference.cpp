#include "files/data_reference.h"

namespace corvane {

std::int32_t DataReferenceOf(const XFileSpec& spec, qt::DataReference& reference) {
    return QTNewDataReferenceFromFullPathCFString(spec.GetNativePathW(), kQTWindowsPathStyle, 0, reference);
}

} // namespace corvane
