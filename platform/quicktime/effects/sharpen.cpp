// Sharpening by what a blurred copy lacks.
#include "platform/quicktime/effects/effect.h"
#include "platform/quicktime/effects/gaussian.h"
#include "platform/quicktime/effects/pixel_math.h"
#include "platform/quicktime/effects/rows.h"

#include <array>

namespace qt {
namespace {

constexpr std::array kParameters = {
    NumberParameter("amount", "Amount", 0, 500, 100, "percent"),
    NumberParameter("radius", "Radius", 0.2, 50, 1.5, kPixelUnit),
    WholeParameter("threshold", "Least difference", 0, 255, 0),
};

std::uint32_t Sharpened(std::uint32_t sharp, std::uint32_t blurred, float amount, std::int32_t threshold) {
    const std::int32_t difference = static_cast<std::int32_t>(sharp) - static_cast<std::int32_t>(blurred);
    if (std::abs(difference) < threshold) return sharp;
    return ToByte(static_cast<float>(sharp) + amount * static_cast<float>(difference));
}

void Render(const EffectInput& input, PixelImage& out) {
    const auto amount = static_cast<float>(input.values.Fraction("amount"));
    const std::int32_t threshold = input.values.Whole("threshold");
    GaussianBlur(input.a, input.values.Number("radius"), out);
    EachRow(out, [&](std::int32_t y) {
        const std::uint32_t* sharp = input.a.Row(y);
        std::uint32_t* row = out.Row(y);
        for (std::int32_t x = 0; x < out.width(); ++x) {
            const auto channel = [&](std::uint32_t (*value)(std::uint32_t)) {
                return Sharpened(value(sharp[x]), value(row[x]), amount, threshold);
            };
            row[x] = Pixel(channel(Red), channel(Green), channel(Blue), Alpha(sharp[x]));
        }
    });
}

} // namespace

const Effect kSharpenEffect = {Code("shrp"), "Sharpen", kFilterClass, kFocusClass, 1, kParameters, Render};

} // namespace qt
