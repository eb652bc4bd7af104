#include "files/file_function.h"
#include "files/functions.h"
#include "plugin/errors.h"
#include "plugin/host_data.h"
#include "plugin/results.h"

namespace corvane {
namespace {

void Delete(const FM_DataVect& parameters) {
    const bool may_delete_folder = Host(FM_DataVect_AtAsBoolean, &parameters, 1);
    XFileSpec item;
    std::int32_t code = ResolvePathParameter(parameters, 0, item);
    if (code != 0) return ReportError(code, "Source item not found");
    if (!may_delete_folder && item.IsDirectory())
        return ReportError(kErrorFileExpected, "folderFlag must be set to delete a directory");
    const native::OperationPath path = native::GetOperationPath(item);
    code = path.code != 0 ? path.code : native::DeleteItem(path.path);
    if (code != 0) ReportError(code, "DeleteItem failed");
}

} // namespace

FM_Error DeleteItem(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    return RunFileFunction(parameters, 2, result, Delete);
}

} // namespace corvane
