#include "files/file_function.h"
#include "files/functions.h"
#include "plugin/host_data.h"
#include "plugin/results.h"

namespace corvane {
namespace {

void Rename(const FM_DataVect& parameters) {
    const native::OperationPath item = ResolveItemParameter(parameters, 0);
    std::int32_t code = item.code;
    if (code == 0)
        code = native::RenameItem(item.path, ParameterAsUtf16(Host(FM_DataVect_At, &parameters, 1)));
    if (code != 0) ReportError(code, "RenameItem failed");
}

} // namespace

FM_Error RenameItem(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    return RunFileFunction(parameters, 2, result, Rename);
}

} // namespace corvane
