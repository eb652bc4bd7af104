#include "files/path_parameter.h"

#include "files/default_folder.h"
#include "files/special_folders.h"
#include "plugin/host_data.h"

namespace corvane {
namespace {

bool IsEmbeddedContainer(const FM_Data& parameter) {
    return Host(FM_Data_GetNativeType, &parameter) == kFM_TypeContainer &&
           Host(FM_BinaryData_GetCount, Host(FM_Data_GetBinaryData, &parameter)) > 0;
}

// The line around the position; a line ends at a carriage return.
std::string_view LineAt(std::string_view text, std::size_t position) {
    const auto before = text.rfind('\r', position);
    const std::size_t start = before == std::string_view::npos ? 0 : before + 1;
    return text.substr(start, text.find('\r', position) - start);
}

std::int32_t ResolveInFolder(std::string_view text, const XFileSpec& folder, XFileSpec& spec) {
    if (text.starts_with('/')) return spec.SetFromFileMakerPath(text, false);
    return spec.SetFromFileMakerPath(text, &folder, false);
}

} // namespace

std::int32_t ResolvePathParameter(const FM_Data& parameter, XFileSpec& spec) {
    if (IsEmbeddedContainer(parameter)) return kEmbeddedContainer;
    const std::string parameter_text = ParameterAsUtf8(&parameter);
    std::string_view text = parameter_text;

    const auto reference = text.find("win:/");
    if (reference != std::string_view::npos) return spec.SetFromFileMakerPath(LineAt(text, reference), true);

    text = text.substr(0, text.find('\r'));
    if (!text.starts_with('.') || text.starts_with("..")) return ResolveInFolder(text, DefaultFolder(), spec);

    const std::int32_t code = ResolveSpecialFolder(text, spec);
    if (code != 0 || text.size() < 3 || text[2] != '/') return code;
    return ResolveInFolder(text.substr(3), spec, spec);
}

} // namespace corvane
