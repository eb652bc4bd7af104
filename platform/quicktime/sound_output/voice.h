// One sound that plays: what is queued of it, its volume, balance and rate, and how far it has come.
//
// The thread that decodes pushes frames; the device's thread mixes. Everything but the queue, the position
// and the states that can be asked for is used under the output's lock.
#pragma once

#include "platform/quicktime/sound_output/rate_converter.h"

#include <cstdint>

namespace qt {

/// Changes of loudness are spread over so many frames of the device, or they would click: about 3 ms.
inline constexpr std::size_t kRampFrames = 128;

/// How a voice is to play: set as one.
struct VoiceSettings {
    float left = 1; ///< gains
    float right = 1;
    double rate = 0; ///< frames of the sound a second, at the speed at which they are to play
    bool playing = false;
    bool ending = false; ///< fades out and finishes, however much is queued
};

class Voice {
public:
    /// Keeps about as much queued as a second of the sound has frames.
    explicit Voice(std::uint32_t sound_rate) : queue_(sound_rate) {}

    /// Of the decoding thread.
    FrameRing& Queue() { return queue_; }
    /// Nothing more will be pushed.
    void EndQueue() { queue_ended_.store(true, std::memory_order_release); }

    /// Frames of the sound that have been played.
    [[nodiscard]] std::int64_t Position() const { return position_.load(std::memory_order_acquire); }
    /// Nothing more will be heard of it.
    [[nodiscard]] bool IsFinished() const { return finished_.load(std::memory_order_acquire); }

    /// Takes effect with the next frames that are mixed, in ramps of kRampFrames. `filter` brings the rate to
    /// that of the device.
    void Set(const VoiceSettings& settings, std::shared_ptr<const RateFilter> filter);
    /// The latest; for the thread that sets them.
    [[nodiscard]] const VoiceSettings& Settings() const { return settings_; }

    /// Adds the next frames to the mix.
    void Mix(std::span<StereoFrame> mix);

private:
    enum class State : std::uint8_t { kReady, kWaiting, kSilent, kAtEnd };

    /// Takes in what the next frame needs.
    State Prepare();
    /// Takes one more frame of the sound in; false when there is none yet.
    bool Advance();
    /// How loud the next frame is on its way into, or out of, silence.
    float Fade();
    void MoveGains();

    FrameRing queue_;
    std::atomic<bool> queue_ended_ = false;
    std::atomic<std::int64_t> position_ = 0;
    std::atomic<bool> finished_ = false;

    VoiceSettings settings_;
    std::shared_ptr<const RateFilter> filter_;
    RateConverter converter_;
    double phase_ = 0;        ///< of the position, behind the frame at it
    std::int64_t taken_ = 0;  ///< frames that the converter has got, those behind the end too
    std::int64_t frames_ = 0; ///< of them, those of the sound
    float fade_ = 0;
    float left_ = 1; ///< gains on their way to those of the settings
    float right_ = 1;
    float left_change_ = 0; ///< of each frame
    float right_change_ = 0;
    std::size_t ramp_frames_ = 0; ///< that are left of the way
};

} // namespace qt
