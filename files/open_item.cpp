#include "files/file_function.h"
#include "files/functions.h"
#include "plugin/results.h"

namespace corvane {
namespace {

void Open(const FM_DataVect& parameters) {
    const native::OperationPath item = ResolveItemParameter(parameters, 0);
    const std::int32_t code = item.code != 0 ? item.code : native::OpenItem(item.path);
    if (code != 0) ReportError(code, "OpenItem failed");
}

} // namespace

FM_Error OpenItem(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    return RunFileFunction(parameters, 1, result, Open);
}

} // namespace corvane
