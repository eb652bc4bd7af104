#include "sounds/fade_times.h"

#include <algorithm>
#include <limits>

namespace corvane {

namespace {

constexpr float kFixedOne = 65536.0F;

/// Cuts off the fraction. Beyond 32 bits, as in movies of more than nine hours, the end of the range.
std::int32_t Truncate(float value) {
    constexpr float kTooLarge = 2147483648.0F;
    if (value >= kTooLarge) return std::numeric_limits<std::int32_t>::max();
    if (value < -kTooLarge) return std::numeric_limits<std::int32_t>::min();
    return static_cast<std::int32_t>(value);
}

float ToUnits(Fixed seconds, float scale) {
    return static_cast<float>(seconds) / kFixedOne * scale;
}

/// Place of a time in the movie, or `otherwise` for one outside it.
float PlaceOf(const FadeTime& time, float duration, float scale, float otherwise) {
    const float units = ToUnits(time.seconds, scale);
    const float place = time.from_end ? duration - units : units;
    return place >= 0.0F && place <= duration ? place : otherwise;
}

} // namespace

Fade SanitiseFade(const FadeRequest& request, std::int32_t duration, std::int32_t time_scale) {
    const auto length = static_cast<float>(duration);
    const auto scale = static_cast<float>(time_scale);
    const float start = PlaceOf(request.start, length, scale, 0.0F);
    const float end = PlaceOf(request.end, length, scale, length);

    Fade fade;
    fade.start = Truncate(std::min(start, end) / scale * kFixedOne);
    fade.end = Truncate(std::max(start, end) / scale * kFixedOne);
    fade.fade_out = request.fade_out;
    const bool usable = request.level >= 0.0F && request.level <= 1.0F;
    fade.level = usable ? request.level : (request.fade_out ? 0.0F : 1.0F);
    return fade;
}

FadeRamp MakeFadeRamp(const Fade& fade, std::int32_t time_scale) {
    const auto scale = static_cast<float>(time_scale);
    const float begin = ToUnits(fade.start, scale);
    const float end = begin + ToUnits(fade.end - fade.start, scale);
    const auto volume = static_cast<std::int16_t>(255.0F * fade.level);

    FadeRamp ramp;
    ramp.begin = Truncate(begin);
    ramp.end = Truncate(end);
    (fade.fade_out ? ramp.first_volume : ramp.last_volume) = volume;
    return ramp;
}

} // namespace corvane
