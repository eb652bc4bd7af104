#include "sounds/recording_manager.h"

#include "platform/win32/errors.h"
#include "plugin/drawing_port.h"
#include "plugin/host_data.h"
#include "sounds/media_pool.h"

#include <algorithm>
#include <new>

namespace corvane {
namespace {

std::unique_ptr<RecordingManager> g_manager;

template <class Item>
Item TakeLast(std::vector<Item>& items) {
    if (items.empty()) return nullptr;
    const Item last = items.back();
    items.pop_back();
    return last;
}

} // namespace

RecordingManager& RecordingManager::Instance() {
    if (g_manager == nullptr) g_manager.reset(new RecordingManager);
    return *g_manager;
}

void RecordingManager::Delete() {
    // Recorders give back what they borrowed, so that they go before the manager does.
    if (g_manager != nullptr) std::exchange(g_manager->recorders_, {}).clear();
    g_manager.reset();
}

RecordingManager::RecordingManager() : port_(DrawingPort()) {
    if (MutexCreate(lock_) != ERROR_SUCCESS) throw std::bad_alloc();
    SeqGrabComponent grabber = nullptr;
    OpenADefaultComponent(qt::kSequenceGrabber, qt::kAnySubtype, &grabber);
    grabber_.reset(grabber);
    if (SGInitialize(grabber) != noErr) return;
    free_grabbers_.push_back(grabber);
    SGChannel channel = nullptr;
    if (SGNewChannel(grabber, qt::Code("soun"), &channel) == noErr) free_channels_.push_back(channel);
}

RecordingManager::~RecordingManager() {
    MutexDestroy(lock_);
}

bool RecordingManager::IsRecording() {
    const MutexScope lock(lock_);
    return std::ranges::any_of(recorders_, [](const SharedRecorder& recorder) {
        return recorder->GetState() == SoundRecorder::State::kRecording;
    });
}

void RecordingManager::Register(const SharedRecorder& recorder) {
    {
        const MutexScope lock(lock_);
        recorders_.push_back(recorder);
    }
    MediaPool::Instance().RequestTimer(TimerUser::kRecording);
}

void RecordingManager::Unregister(const SharedRecorder& recorder) {
    const MutexScope lock(lock_);
    std::erase(recorders_, recorder);
}

void RecordingManager::ForEach(const std::function<bool(const SharedRecorder&)>& predicate) {
    std::vector<SharedRecorder> copy;
    {
        const MutexScope lock(lock_);
        copy = recorders_;
    }
    (void)std::ranges::all_of(copy, predicate);
}

void RecordingManager::IdleAll() {
    if (!IsRecording()) {
        MediaPool::Instance().ReleaseTimer(TimerUser::kRecording);
        return;
    }
    ForEach([](const SharedRecorder& recorder) {
        recorder->Idle();
        return true;
    });
}

SeqGrabComponent RecordingManager::BorrowGrabber() {
    return TakeLast(free_grabbers_);
}

SGChannel RecordingManager::BorrowChannel() {
    return TakeLast(free_channels_);
}

void RecordingManager::ReturnGrabber(SeqGrabComponent grabber) {
    if (grabber != nullptr) free_grabbers_.push_back(grabber);
}

void RecordingManager::ReturnChannel(SGChannel channel) {
    if (channel != nullptr) free_channels_.push_back(channel);
}

} // namespace corvane
