#include "files/data_reference.h"

#include <cstring>

namespace corvane {

std::int32_t DataReferenceOf(const XFileSpec& spec, qt::DataReference& reference) {
    return QTNewDataReferenceFromFullPathCFString(spec.GetNativePathW(), kQTWindowsPathStyle, 0, reference);
}

std::int32_t FileOfDataReference(const qt::DataReference& reference, XFileSpec& spec) {
    if (reference.type != qt::kAliasDataHandler) return kNotAFileReference;
    const auto bytes = qt::HandleBytes(reference.handle.get());
    std::u16string path(bytes.size() / sizeof(char16_t), u'\0');
    if (!path.empty()) std::memcpy(path.data(), bytes.data(), path.size() * sizeof(char16_t));
    return spec.SetFromNativePathW(path);
}

} // namespace corvane
