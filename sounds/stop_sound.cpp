#include "sounds/functions.h"

#include "plugin/drawing_port.h"
#include "plugin/errors.h"
#include "plugin/functions.h"
#include "sounds/media_pool.h"

namespace corvane {

FM_Error StopSound(std::int16_t, const FM_ExprEnv&, const FM_DataVect&, FM_Data& result) {
    CVSError& error = BeginCall("Media_StopSound");
    const qt::CurrentPort port(DrawingPort());
    error.SetCode(0);
    MediaPool::Instance().StopAll();
    return SetLastErrorResult(result);
}

} // namespace corvane
