#include "sounds/functions.h"

#include "files/movie_file.h"
#include "plugin/drawing_port.h"
#include "plugin/errors.h"
#include "plugin/host_data.h"
#include "sounds/recording_manager.h"
#include "sounds/sound_results.h"

namespace corvane {
namespace {

FM_Error PutRecording(SoundRecorder& recorder, FM_Data& result, CVSError& error) {
    std::int32_t code = recorder.Stop();
    if (code != 0) return error.Fail(code, "Recording error.");
    if (recorder.GetOutput().type != qt::kAliasDataHandler)
        return error.Fail(kErrorUnknown, "Unknown data reference type.");
    qt::OwnedMovie movie;
    code = OpenMovieReference(recorder.GetOutput(), movie);
    if (code != 0) return error.Fail(code, "Failed to open recorded sound.");
    code = PutMovieResult(result, movie.get());
    if (code != 0) return error.Fail(code, "Failed to set result.");
    error.SetCode(0);
    return kFM_ErrorNone;
}

} // namespace

FM_Error RecordSoundStop(std::int16_t, const FM_ExprEnv&, const FM_DataVect&, FM_Data& result) {
    CVSError& error = BeginCall("Media_RecordSoundStop");
    const qt::CurrentPort port(DrawingPort());
    ClearResult(result);
    SharedRecorder recorder;
    RecordingManager::Instance().ForEach([&](const SharedRecorder& first) {
        recorder = first;
        return false;
    });
    if (recorder == nullptr)
        return error.Fail(kWrongState, "There is no recording to stop. Call Media_RecordSoundStart before "
                                       "calling this function.");
    RecordingManager::Instance().Unregister(recorder);
    const FM_Error answer = PutRecording(*recorder, result, error);
    recorder->Dispose();
    if (answer != kFM_ErrorNone) ClearResult(result);
    return answer;
}

} // namespace corvane
