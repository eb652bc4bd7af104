#include "files/file_function.h"
#include "files/functions.h"
#include "plugin/errors.h"
#include "plugin/host_data.h"
#include "plugin/results.h"

namespace corvane {
namespace {

// Resolves the first parameter to an item that need not exist; false when that is reported as a failure.
bool ResolveReference(const FM_DataVect& parameters, XFileSpec& item) {
    const std::int32_t code = ResolvePathParameter(parameters, 0, item);
    if (code == 0 || code == kErrorFileNotFound) return true;
    ReportError(code, "Not a file path reference");
    return false;
}

void Path(const FM_DataVect& parameters) {
    const std::int32_t count = Host(FM_DataVect_Size, &parameters);
    if (count < 1) return ReportError(kErrorParameterCount, "Requires either 0 or 1 parameters");
    XFileSpec item;
    if (!ResolveReference(parameters, item)) return;
    if (count > 1) {
        const std::int32_t number = Host(FM_FixPt_AsLong, Host(FM_DataVect_AtAsNumber, &parameters, 1));
        const auto levels = static_cast<std::int16_t>(number); // its low 16 bits
        for (std::int16_t i = 0; i < levels; ++i) item.MoveToParent();
    }
    SetResultBufferText(item.GetFileMakerPath("").text);
}

void Name(const FM_DataVect& parameters) {
    XFileSpec item;
    if (ResolveReference(parameters, item)) SetResultBufferText(item.GetName());
}

} // namespace

FM_Error GetPath(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    return RunFileFunction(parameters, -1, result, Path);
}

FM_Error GetName(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    return RunFileFunction(parameters, 1, result, Name);
}

} // namespace corvane
