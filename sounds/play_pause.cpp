#include "sounds/functions.h"

#include "plugin/errors.h"
#include "plugin/functions.h"
#include "plugin/host_data.h"
#include "plugin/parameters.h"
#include "sounds/media_pool.h"

namespace corvane {

FM_Error PlayPause(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_PlayPause");
    const std::int32_t count = Host(FM_DataVect_Size, &parameters);
    if (count > 1) {
        error.Fail(kErrorWrongParameter, "This function requires 0 or 1 parameter.");
    } else {
        MediaPool::Instance().TogglePause(count == 1 ? ReadLongParameter(parameters, 0).value : kAllEntries);
        error.SetCode(0);
    }
    const FM_Error set = SetLastErrorResult(result);
    return error.IsCode(0) ? set : error.HostCode();
}

} // namespace corvane
