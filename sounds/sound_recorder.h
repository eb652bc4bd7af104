// One recording, from its preparation to its end.
#pragma once

#include "platform/quicktime/data_references.h"
#include "platform/quicktime/sequence_grabber/sequence_grabber.h"

#include <cstdint>

namespace corvane {

/// An operation was called in a state that does not allow it.
inline constexpr std::int32_t kWrongState = -3155;

/// Room for what is yet to be recorded.
struct RecorderStatus {
    std::int64_t bytes = 0;
    std::int32_t seconds = 0;
};

/// Each operation answers 0 or a code, which stays the recorder's last error.
class SoundRecorder {
public:
    enum class State : std::uint8_t {
        kNew = 0,
        kInitialised = 1,
        kReady = 2,
        kRecording = 3,
        kPaused = 4,
        kIdling = 5,
        kFailed = 6,
        kDisposed = 7
    };

    SoundRecorder() = default;
    SoundRecorder(const SoundRecorder&) = delete;
    SoundRecorder& operator=(const SoundRecorder&) = delete;
    ~SoundRecorder() { Dispose(); }

    /// Borrows what it records with; -1 while another recorder has it.
    std::int32_t Create();
    /// The file to record into, which Start empties; the reference is copied.
    std::int32_t SetOutput(const qt::DataReference& output);
    std::int32_t Start();
    std::int32_t TogglePause();
    std::int32_t Stop();
    /// Writes what has come in. A recorder that can't is stopped, and fails.
    std::int32_t Idle();
    std::int32_t GetStatus(RecorderStatus& status);
    /// Gives back what Create borrowed.
    void Dispose();

    [[nodiscard]] State GetState() const { return state_; }
    [[nodiscard]] std::int32_t GetLastError() const { return last_error_; }
    [[nodiscard]] const qt::DataReference& GetOutput() const { return output_; }

private:
    std::int32_t Keep(std::int32_t code) { return last_error_ = code; }
    /// Takes the state on success, and fails otherwise.
    std::int32_t Enter(State state, ComponentResult code);

    State state_ = State::kNew;
    SeqGrabComponent grabber_ = nullptr;
    SGChannel channel_ = nullptr;
    std::int32_t last_error_ = 0;
    qt::DataReference output_;
};

} // namespace corvane
