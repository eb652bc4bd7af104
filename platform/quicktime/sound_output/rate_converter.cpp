#include "platform/quicktime/sound_output/rate_converter.h"

#include <numbers>

namespace qt {

// A sinc, cut to the taps by a Blackman window. The position's own frame is the tap kDelay.
RateFilter::RateFilter(double step) : step_(step), coefficients_(kPhases + 1) {
    using std::numbers::pi;
    const double cutoff = step > 1 ? 1 / step : 1;
    constexpr double kHalf = RateConverter::kDelay;
    for (std::size_t phase = 0; phase <= kPhases; ++phase) {
        auto& row = coefficients_[phase];
        double sum = 0;
        for (std::size_t tap = 0; tap < kTaps; ++tap) {
            const double distance =
                kHalf - static_cast<double>(tap) - static_cast<double>(phase) / static_cast<double>(kPhases);
            const double x = pi * cutoff * distance;
            const double sinc = distance == 0 ? 1 : std::sin(x) / x;
            const double window = std::abs(distance) >= kHalf
                                      ? 0
                                      : 0.42 + 0.5 * std::cos(pi * distance / kHalf) +
                                            0.08 * std::cos(2 * pi * distance / kHalf);
            row[tap] = static_cast<float>(sinc * window);
            sum += sinc * window;
        }
        for (float& coefficient : row) coefficient = static_cast<float>(coefficient / sum);
    }
}

StereoFrame RateFilter::Between(std::span<const StereoFrame, kTaps> latest_first, double phase) const {
    const double place = phase * kPhases;
    const auto index = static_cast<std::size_t>(place);
    const auto part = static_cast<float>(place - static_cast<double>(index));
    const auto& before = coefficients_[index];
    const auto& after = coefficients_[index + 1];
    StereoFrame sum;
    for (std::size_t tap = 0; tap < kTaps; ++tap) {
        const float coefficient = before[tap] + part * (after[tap] - before[tap]);
        sum.left += coefficient * latest_first[tap].left;
        sum.right += coefficient * latest_first[tap].right;
    }
    return sum;
}

} // namespace qt
