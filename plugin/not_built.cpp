#include "plugin/not_built.h"

#include "plugin/errors.h"
#include "plugin/results.h"

namespace corvane {

FM_Error SoundFunctionNotBuilt(std::int16_t, const FM_ExprEnv&, const FM_DataVect&, FM_Data&) {
    CVSError& error = BeginCall(nullptr);
    error.SetCode(kErrorNotImplemented);
    return error.HostCode();
}

FM_Error FunctionNotBuilt(std::int16_t, const FM_ExprEnv&, const FM_DataVect&, FM_Data& result) {
    ReportError(kErrorNotImplemented, ErrorMessage(kErrorNotImplemented));
    FinishResult(result);
    return kFM_ErrorNone;
}

} // namespace corvane
