#include "platform/quicktime/sound_output/voice.h"

namespace qt {
namespace {

/// Frames that the converter takes in until the sound's first one is at the position.
constexpr auto kLead = static_cast<std::int64_t>(RateConverter::kDelay) + 1;

} // namespace

void Voice::Set(const VoiceSettings& settings, std::shared_ptr<const RateFilter> filter) {
    settings_ = settings;
    filter_ = std::move(filter);
    // What has not begun yet has no loudness to change.
    ramp_frames_ = taken_ > 0 ? kRampFrames : 1;
    left_change_ = (settings.left - left_) / static_cast<float>(ramp_frames_);
    right_change_ = (settings.right - right_) / static_cast<float>(ramp_frames_);
}

bool Voice::Advance() {
    StereoFrame frame;
    if (queue_.Available() > 0) {
        frame = queue_.Pop();
        ++frames_;
    } else if (!queue_ended_.load(std::memory_order_acquire) || queue_.Available() > 0) {
        return false;
    }
    converter_.Take(frame); // silence behind the end, until the last frame has come to the position
    ++taken_;
    return true;
}

float Voice::Fade() {
    constexpr float kChange = 1.0F / kRampFrames;
    const bool in = settings_.playing && !settings_.ending;
    const float fade = in ? std::min(fade_ + kChange, 1.0F) : std::max(fade_ - kChange, 0.0F);
    // Silence follows the sound's last frame, and the last that is queued when the host lets nothing decode.
    const std::int64_t unplayed =
        queue_ended_.load(std::memory_order_acquire) ? frames_ - (taken_ - kLead) : 0;
    const auto left =
        static_cast<double>(unplayed + static_cast<std::int64_t>(queue_.Available())) / filter_->Step();
    return fade_ = std::min(fade, static_cast<float>(left) * kChange);
}

void Voice::MoveGains() {
    if (ramp_frames_ == 0) return;
    left_ += left_change_;
    right_ += right_change_;
    if (--ramp_frames_ > 0) return;
    left_ = settings_.left;
    right_ = settings_.right;
}

Voice::State Voice::Prepare() {
    if (fade_ == 0 && settings_.ending) return State::kAtEnd;
    if (fade_ == 0 && !settings_.playing) return State::kSilent;
    for (; phase_ >= 1; phase_ -= 1)
        if (!Advance()) return State::kWaiting;
    while (taken_ < kLead)
        if (!Advance()) return State::kWaiting;
    return taken_ - kLead < frames_ ? State::kReady : State::kAtEnd;
}

void Voice::Mix(std::span<StereoFrame> mix) {
    const double step = filter_ == nullptr ? 0 : filter_->Step(); // not set yet, it is silent
    State state = State::kReady;
    for (auto out = mix.begin(); out != mix.end() && (state = Prepare()) == State::kReady; ++out) {
        const bool plain = step == 1 && phase_ == 0;
        const StereoFrame frame = plain ? converter_.Middle() : converter_.Between(phase_, *filter_);
        const float fade = Fade();
        MoveGains();
        out->left += frame.left * left_ * fade;
        out->right += frame.right * right_ * fade;
        phase_ += step;
    }
    position_.store(std::clamp<std::int64_t>(taken_ - kLead + static_cast<std::int64_t>(phase_), 0, frames_),
                    std::memory_order_release);
    // What is to end and gets nothing more would wait for ever.
    const bool ends = state == State::kAtEnd || (state == State::kWaiting && settings_.ending);
    if (ends) finished_.store(true, std::memory_order_release);
}

} // namespace qt
