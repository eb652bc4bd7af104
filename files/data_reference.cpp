#include "files/data_reference.h"

#include "plugin/errors.h"
#include "plugin/host_data.h"

#include <cstring>
#include <string>

namespace corvane {

std::int32_t DataReferenceOf(const XFileSpec& spec, qt::DataReference& reference) {
    return QTNewDataReferenceFromFullPathCFString(spec.GetNativePathW(), kQTWindowsPathStyle, 0, reference);
}

std::int32_t AddressReferenceOf(const FM_Data* parameter, qt::DataReference& reference) {
    const std::string text = ParameterAsUtf8(parameter);
    const std::string_view line = std::string_view(text).substr(0, text.find('\r'));
    if (!line.starts_with("http://")) return kErrorFileNotFound;
    return QTNewDataReferenceFromURLCFURL(line, 0, reference);
}

std::int32_t FileOfDataReference(const qt::DataReference& reference, XFileSpec& spec) {
    if (reference.type != qt::kAliasDataHandler) return kNotAFileReference;
    const auto bytes = qt::HandleBytes(reference.handle.get());
    std::u16string path(bytes.size() / sizeof(char16_t), u'\0');
    if (!path.empty()) std::memcpy(path.data(), bytes.data(), path.size() * sizeof(char16_t));
    return spec.SetFromNativePathW(path);
}

} // namespace corvane
