#include "files/default_folder.h"
#include "files/file_function.h"
#include "files/functions.h"
#include "files/path_parameter.h"
#include "plugin/errors.h"
#include "plugin/host_data.h"
#include "plugin/results.h"

namespace corvane {
namespace {

void SetFolder(const FM_DataVect& parameters) {
    if (RequireTextParameter(parameters, 0, "Parameter (path) must be text")) return;
    XFileSpec folder = DefaultFolder(); // ".D" leaves it as it is where the desktop is unknown
    // The name of a file that was chosen is the result.
    const std::int32_t code = ResolvePathParameter(*Host(FM_DataVect_At, &parameters, 0), folder);
    if (code == kErrorUserCancelled) return ReportError(0, "Cancel");
    if (code != 0) return ReportError(code, "Failed to set default path");
    if (!folder.IsDirectory()) return ReportError(0, "Not a directory path");
    DefaultFolder() = folder;
}

void GetFolder(const FM_DataVect&) {
    SetResultBufferText(DefaultFolder().GetFileMakerPath("").text);
}

} // namespace

FM_Error SetDefaultFolder(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    return RunFileFunction(parameters, 1, result, SetFolder);
}

FM_Error GetDefaultFolder(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    return RunFileFunction(parameters, 0, result, GetFolder);
}

} // namespace corvane
