// All recordings, and what they record with.
#pragma once

#include "plugin/plugin_mutex.h"
#include "sounds/sound_recorder.h"

#include <functional>
#include <memory>
#include <vector>

namespace corvane {

using SharedRecorder = std::shared_ptr<SoundRecorder>;

/// Host thread only.
class RecordingManager {
public:
    /// Made by the first call, and by the first one after Delete.
    static RecordingManager& Instance();
    /// Stops and drops all recordings.
    static void Delete();

    RecordingManager(const RecordingManager&) = delete;
    RecordingManager& operator=(const RecordingManager&) = delete;
    ~RecordingManager();

    /// Whether one of the registered recorders records, neither paused nor failed.
    bool IsRecording();
    /// Keeps the recorder and has its recording go on in the background.
    void Register(const SharedRecorder& recorder);
    void Unregister(const SharedRecorder& recorder);
    /// Calls the predicate with each registered recorder, in the order of registration, until it is false.
    /// The predicate may register and unregister.
    void ForEach(const std::function<bool(const SharedRecorder&)>& predicate);
    /// Has each recorder write what has come in; without any that records the pool's timer is let go.
    void IdleAll();

    /// What there is one of each of: null while it is lent.
    SeqGrabComponent BorrowGrabber();
    SGChannel BorrowChannel();
    void ReturnGrabber(SeqGrabComponent grabber);
    void ReturnChannel(SGChannel channel);
    [[nodiscard]] GWorldPtr Port() const { return port_; }

private:
    RecordingManager();

    PluginMutex lock_; ///< of the list
    std::vector<SharedRecorder> recorders_;
    qt::OpenComponent grabber_; ///< owns its channel
    std::vector<SeqGrabComponent> free_grabbers_;
    std::vector<SGChannel> free_channels_;
    GWorldPtr port_;
};

} // namespace corvane
