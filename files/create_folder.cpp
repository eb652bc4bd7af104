#include "files/file_function.h"
#include "files/functions.h"
#include "plugin/errors.h"
#include "plugin/host_data.h"
#include "plugin/results.h"

namespace corvane {
namespace {

void Create(const FM_DataVect& parameters) {
    XFileSpec folder;
    std::int32_t code = ResolvePathParameter(parameters, 0, folder);
    if (code != 0) return ReportError(code, "CreateFolder failed");
    if (!folder.IsDirectory())
        return ReportError(kErrorFolderExpected, "CreateFolder requires destination directory, not file");
    const native::OperationPath path = native::GetOperationPath(folder);
    code = path.code;
    if (code == 0)
        code = native::CreateFolder(path.path, ParameterAsUtf16(Host(FM_DataVect_At, &parameters, 1)));
    if (code != 0) ReportError(code, "CreateFolder failed");
}

} // namespace

FM_Error CreateFolder(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    return RunFileFunction(parameters, 2, result, Create);
}

} // namespace corvane
