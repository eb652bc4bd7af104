#include "files/file_function.h"
#include "files/functions.h"
#include "plugin/errors.h"
#include "plugin/results.h"

namespace corvane {
namespace {

void Move(const FM_DataVect& parameters) {
    XFileSpec item;
    std::int32_t code = ResolvePathParameter(parameters, 0, item);
    if (code != 0) return ReportError(code, "Source item not found");
    const native::OperationPath source = native::GetOperationPath(item);
    if (source.code != 0) return ReportError(source.code, "MoveItem failed");

    XFileSpec destination;
    code = ResolvePathParameter(parameters, 1, destination);
    if (code != 0) return ReportError(code, "Destination folder not found");
    if (!destination.IsDirectory())
        return ReportError(kErrorFolderExpected, "MoveItem requires destination directory, not file");
    const native::OperationPath folder = native::GetOperationPath(destination);
    code = folder.code != 0 ? folder.code : native::MoveItem(source.path, folder.path);
    if (code != 0) ReportError(code, "MoveItem failed");
}

} // namespace

FM_Error MoveItem(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    return RunFileFunction(parameters, 2, result, Move);
}

} // namespace corvane
