// Playing sound faster or slower: frames are taken in at one rate and given out at another.
#pragma once

#include "platform/quicktime/sound_output/frame_ring.h"

#include <array>
#include <cmath>
#include <memory>

namespace qt {

/// Coefficients of a low-pass filter between frames, for one ratio of rates.
class RateFilter {
public:
    static constexpr std::size_t kTaps = 32;

    /// `step`: frames taken in for one that goes out. Above 1 what the lower rate can't hold is filtered out.
    explicit RateFilter(double step);

    [[nodiscard]] double Step() const { return step_; }

    /// The frame at `phase` (0 to 1) between the two middle ones of kTaps frames, the latest being the first.
    [[nodiscard]] StereoFrame Between(std::span<const StereoFrame, kTaps> latest_first, double phase) const;

private:
    static constexpr std::size_t kPhases = 256;
    double step_;
    std::vector<std::array<float, kTaps>> coefficients_; ///< of kPhases + 1 phases
};

/// Takes frames in one by one, and gives out what lies at its position among them.
class RateConverter {
public:
    static constexpr std::size_t kTaps = RateFilter::kTaps;
    /// The frame at the position is the one taken in this many frames before the latest.
    static constexpr std::size_t kDelay = kTaps / 2;

    void Take(StereoFrame frame) {
        next_ = next_ == 0 ? kTaps - 1 : next_ - 1;
        frames_[next_] = frames_[next_ + kTaps] = frame;
    }
    /// The frame at the position.
    [[nodiscard]] StereoFrame Middle() const { return frames_[next_ + kDelay]; }
    /// What lies `phase` (0 to 1) behind it.
    [[nodiscard]] StereoFrame Between(double phase, const RateFilter& filter) const {
        return filter.Between(std::span<const StereoFrame, kTaps>(frames_.data() + next_, kTaps), phase);
    }

private:
    std::array<StereoFrame, 2 * kTaps> frames_{}; ///< twice, so that all are in one piece wherever they begin
    std::size_t next_ = 0;
};

} // namespace qt
