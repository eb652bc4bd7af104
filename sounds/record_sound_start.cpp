#include "sounds/functions.h"

#include "files/data_reference.h"
#include "files/movie_file.h"
#include "platform/win32/keyboard.h"
#include "plugin/drawing_port.h"
#include "plugin/host_data.h"
#include "plugin/parameters.h"
#include "sounds/media_pool.h"
#include "sounds/recording_manager.h"
#include "sounds/recording_target.h"
#include "sounds/sound_results.h"

#include <chrono>
#include <thread>

namespace corvane {
namespace {

constexpr std::int32_t kDeviceBusy = -227;

std::int32_t StartRecorder(const XFileSpec& file, const SharedRecorder& recorder) {
    if (const std::int32_t code = CheckRecordingTarget(file); code != 0) return code;
    qt::DataReference reference;
    std::int32_t code = DataReferenceOf(file, reference);
    if (code == 0) code = recorder->Create();
    if (code != 0) return code;
    RecordingManager::Instance().Register(recorder);
    code = recorder->SetOutput(reference);
    if (code == 0) code = recorder->Start();
    if (code == 0) return 0;
    RecordingManager::Instance().Unregister(recorder);
    recorder->Dispose();
    return code;
}

bool IsButtonPressed() {
    return GetAsyncKeyState(VK_LBUTTON) < 0 || GetAsyncKeyState(VK_RBUTTON) < 0;
}

std::int32_t RecordUntilClick(const SharedRecorder& recorder) {
    constexpr auto kRound = std::chrono::milliseconds(10);
    while (!IsButtonPressed() && recorder->GetState() == SoundRecorder::State::kRecording) {
        MediaPool::Instance().Idle(); // this recording's work, and what plays meanwhile goes on
        std::this_thread::sleep_for(kRound);
    }
    win32::FlushInput(); // the click is not for the next recording
    const bool failed = recorder->GetState() != SoundRecorder::State::kRecording;
    const std::int32_t code = failed ? recorder->GetLastError() : recorder->Stop();
    RecordingManager::Instance().Unregister(recorder);
    recorder->Dispose();
    return code;
}

FM_Error PutRecording(const RecordingTarget& target, FM_Data& result, CVSError& error) {
    qt::OwnedMovie movie;
    std::int32_t code = OpenMovieFile(*target.file, movie);
    if (code != 0) return error.Fail(code, "Could not open recorded sound.");
    code = target.is_temporary ? PutSoundResourceResult(result, movie.get())
                               : PutMovieResult(result, movie.get());
    if (code != 0) return error.Fail(code, "Could not set result.");
    error.SetCode(0);
    return kFM_ErrorNone;
}

FM_Error Record(const FM_DataVect& parameters, FM_Data& result, CVSError& error) {
    if (RecordingManager::Instance().IsRecording())
        return error.Fail(kDeviceBusy, "Only one recording is allowed. Call Media_RecordSoundStop before "
                                       "calling this function again.");
    const std::int32_t count = Host(FM_DataVect_Size, &parameters);
    if (count > 2 && !Host(FM_Data_IsEmpty, Host(FM_DataVect_At, &parameters, 2)))
        return error.Fail(kErrorNotImplemented, "Hex settings are currently unimplemented.");
    const Read<bool> in_background = count > 1 ? ReadBooleanParameter(parameters, 1) : Read<bool>{};
    if (in_background.code != 0)
        return error.Fail(in_background.code, "Error getting parameter #2 as boolean.");
    RecordingTarget target;
    if (const FM_Error failed = ReadRecordingTarget(parameters, target, error)) return failed;
    error.SetCode(0);
    if (!target.file) return kFM_ErrorNone;
    const auto recorder = std::make_shared<SoundRecorder>();
    std::int32_t code = StartRecorder(*target.file, recorder);
    // A file of the caller's stays with what comes into it; a temporary one, when that goes on after this.
    if (code == 0 && (!target.is_temporary || in_background.value)) target.made.Keep();
    if (in_background.value)
        return code == 0 ? kFM_ErrorNone : error.Fail(code, "Could not start asynchronous recording.");
    if (code == 0) code = RecordUntilClick(recorder);
    if (code != 0) return error.Fail(code, "Synchronous recording failed.");
    return PutRecording(target, result, error);
}

} // namespace

FM_Error RecordSoundStart(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_RecordSoundStart");
    const qt::CurrentPort port(DrawingPort());
    ClearResult(result);
    const FM_Error answer = Record(parameters, result, error);
    if (answer != kFM_ErrorNone) ClearResult(result);
    return answer;
}

} // namespace corvane
