#include "files/file_function.h"
#include "files/functions.h"
#include "plugin/errors.h"
#include "plugin/results.h"

namespace corvane {
namespace {

void Create(const FM_DataVect& parameters) {
    const native::OperationPath target = ResolveItemParameter(parameters, 0);
    if (target.code != 0) return ReportError(target.code, "CreateAlias failed");
    XFileSpec alias;
    std::int32_t code = ResolvePathParameter(parameters, 1, alias);
    if (code == 0) return ReportError(0, "Specified alias file already exists");
    if (code != kErrorFileNotFound) return ReportError(code, "Error in destination file specification");
    code = native::CreateShortcut(target.path, alias.GetNativePathW() + u".lnk", {});
    if (code != 0) ReportError(code, "CreateAlias failed");
}

} // namespace

FM_Error CreateAlias(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    return RunFileFunction(parameters, 2, result, Create);
}

} // namespace corvane
