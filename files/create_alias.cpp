#include "files/file_function.h"
#include "files/functions.h"
#include "plugin/errors.h"
#include "plugin/results.h"

namespace corvane {
namespace {

void Create(const FM_DataVect& parameters) {
    XFileSpec target; // a special folder need not exist
    std::int32_t code = ResolvePathParameter(parameters, 0, target);
    if (code != 0) return ReportError(code, "CreateAlias failed");
    XFileSpec alias;
    code = ResolvePathParameter(parameters, 1, alias);
    if (code == 0) return ReportError(0, "Specified alias file already exists");
    if (code != kErrorFileNotFound) return ReportError(code, "Error in destination file specification");
    code = native::CreateShortcut(target.GetNativePathW(), alias.GetNativePathW() + u".lnk", {});
    if (code != 0) ReportError(code, "CreateAlias failed");
}

} // namespace

FM_Error CreateAlias(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    return RunFileFunction(parameters, 2, result, Create);
}

} // namespace corvane
