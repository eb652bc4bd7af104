#include "sounds/sound_recorder.h"

#include "plugin/errors.h"
#include "sounds/media_pool.h"
#include "sounds/recording_manager.h"

namespace corvane {

std::int32_t SoundRecorder::Enter(State state, ComponentResult code) {
    state_ = code == noErr ? state : State::kFailed;
    return Keep(code);
}

std::int32_t SoundRecorder::Create() {
    if (state_ != State::kNew) return Keep(kWrongState);
    RecordingManager& manager = RecordingManager::Instance();
    grabber_ = manager.BorrowGrabber();
    channel_ = manager.BorrowChannel();
    state_ = State::kInitialised;
    if (grabber_ == nullptr || channel_ == nullptr) return Keep(kErrorUnknown);
    ComponentResult code = SGSetChannelUsage(channel_, seqGrabRecord);
    if (code == noErr) code = SGSetGWorld(grabber_, manager.Port());
    if (code == noErr) code = SGSetMaximumRecordTime(grabber_, 0);
    return Keep(code);
}

std::int32_t SoundRecorder::SetOutput(const qt::DataReference& output) {
    if (state_ != State::kInitialised && state_ != State::kReady) return Keep(kWrongState);
    Handle copy = nullptr;
    const OSErr copied = PtrToHand(*output.handle.get(), &copy, GetHandleSize(output.handle.get()));
    if (copied != noErr) return Keep(copied);
    output_ = {qt::MemoryHandle(copy), output.type};
    ComponentResult code = SGSetDataRef(grabber_, copy, output.type, seqGrabToDisk | seqGrabAppendToFile);
    if (code == noErr) code = SGPrepare(grabber_, false, true);
    if (code == noErr) state_ = State::kReady;
    return Keep(code);
}

std::int32_t SoundRecorder::Start() {
    if (state_ != State::kReady) return Keep(kWrongState);
    const ComponentResult code = SGStartRecord(grabber_);
    if (code == noErr) state_ = State::kRecording;
    return Keep(code);
}

std::int32_t SoundRecorder::TogglePause() {
    if (state_ == State::kRecording) return Enter(State::kPaused, SGPause(grabber_, seqGrabPause));
    if (state_ != State::kPaused) return Keep(kWrongState);
    MediaPool::Instance().RequestTimer(TimerUser::kRecording);
    return Enter(State::kRecording, SGPause(grabber_, seqGrabUnpause));
}

std::int32_t SoundRecorder::Stop() {
    const bool can_stop = state_ == State::kRecording || state_ == State::kPaused || state_ == State::kIdling;
    return can_stop ? Enter(State::kReady, SGStop(grabber_)) : Keep(kWrongState);
}

std::int32_t SoundRecorder::Idle() {
    if (state_ != State::kRecording) return Keep(kWrongState);
    state_ = State::kIdling;
    const ComponentResult code = SGIdle(grabber_);
    if (code != noErr) SGStop(grabber_);
    return Enter(State::kRecording, code);
}

std::int32_t SoundRecorder::GetStatus(RecorderStatus& status) {
    constexpr std::int32_t kTicksPerSecond = 60;
    std::int32_t ticks = 0;
    ComponentResult code = SGGetStorageSpaceRemaining64(grabber_, &status.bytes);
    if (code == noErr) code = SGGetTimeRemaining(grabber_, &ticks);
    status.seconds = ticks / kTicksPerSecond;
    return Keep(code);
}

void SoundRecorder::Dispose() {
    if (grabber_ != nullptr) SGStop(grabber_);
    RecordingManager& manager = RecordingManager::Instance();
    manager.ReturnChannel(channel_);
    manager.ReturnGrabber(grabber_);
    channel_ = nullptr;
    grabber_ = nullptr;
    state_ = State::kDisposed;
}

} // namespace corvane
