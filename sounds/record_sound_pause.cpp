#include "sounds/functions.h"

#include "plugin/drawing_port.h"
#include "plugin/errors.h"
#include "sounds/recording_manager.h"

namespace corvane {

FM_Error RecordSoundPause(std::int16_t, const FM_ExprEnv&, const FM_DataVect&, FM_Data&) {
    CVSError& error = BeginCall("Media_RecordSoundPause");
    const qt::CurrentPort port(DrawingPort());
    bool any = false;
    RecordingManager::Instance().ForEach([&](const SharedRecorder& recorder) {
        recorder->TogglePause();
        any = true;
        return true;
    });
    if (any) {
        error.SetCode(0);
    } else {
        error.Fail(kWrongState,
                   "You are currently not recording. Use Media_RecordSoundStart before using this "
                   "function.");
    }
    return kFM_ErrorNone;
}

} // namespace corvane
