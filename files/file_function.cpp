#include "files/file_function.h"

#include "files/path_parameter.h"
#include "plugin/errors.h"
#include "plugin/host_data.h"
#include "plugin/results.h"

namespace corvane {

FM_Error RunFileFunction(const FM_DataVect& parameters, std::int32_t count, FM_Data& result,
                         void (*body)(const FM_DataVect& parameters)) {
    if (!CheckParameterCount(parameters, count)) body(parameters);
    FinishResult(result);
    return kFM_ErrorNone;
}

std::int32_t ResolvePathParameter(const FM_DataVect& parameters, std::int32_t index, XFileSpec& spec) {
    const std::int32_t code = ResolvePathParameter(*Host(FM_DataVect_At, &parameters, index), spec);
    if (code == 0 || code == kErrorFileNotFound) DiscardResultBuffer();
    return code;
}

native::OperationPath ResolveItemParameter(const FM_DataVect& parameters, std::int32_t index) {
    XFileSpec item;
    if (const std::int32_t code = ResolvePathParameter(parameters, index, item)) return {code, {}, false};
    return native::GetOperationPath(item);
}

std::string_view ExtensionOf(std::string_view text) {
    const auto dot = text.rfind('.');
    return dot == std::string_view::npos ? std::string_view() : text.substr(dot + 1);
}

} // namespace corvane
