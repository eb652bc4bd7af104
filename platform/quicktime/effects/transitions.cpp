// Effects that replace source A by source B place by place, from 0 to 100 percent: wipe, iris, gradient wipe,
// pixel dissolve. Each says for every pixel at what share of the way it changes.
#include "platform/quicktime/effects/effect.h"
#include "platform/quicktime/effects/pixel_math.h"
#include "platform/quicktime/effects/random.h"
#include "platform/quicktime/effects/second_source.h"

#include <array>
#include <cmath>
#include <numbers>

namespace qt {
namespace {

constexpr EffectParameter kPercent = PercentParameter("percent", "Way from A to B", 50);
constexpr EffectParameter kSoftness = PercentParameter("softness", "Softness of the border", 0);

/// moment(x, y) is that share, 0 to 1, of a pixel; a border of `softness` goes before it.
template <class Moment>
void RenderByMoment(const EffectInput& input, double softness, PixelImage& out, Moment moment) {
    constexpr double kHardest = 1e-4; // less than the change from one pixel to the next
    const auto border = static_cast<float>(std::max(softness, kHardest));
    const auto way = static_cast<float>(input.values.Fraction("percent")) * (1 + border);
    EachPair(input, out, [&](std::uint32_t a, std::uint32_t b, std::int32_t x, std::int32_t y) {
        return Mix(a, b, ToByte((way - moment(x, y)) / border * 255));
    });
}

constexpr std::array<EffectChoice, 12> kWipes = {{{"right", "To the right"},
                                                  {"left", "To the left"},
                                                  {"down", "Down"},
                                                  {"up", "Up"},
                                                  {"right-down", "From the upper left corner"},
                                                  {"left-down", "From the upper right corner"},
                                                  {"right-up", "From the lower left corner"},
                                                  {"left-up", "From the lower right corner"},
                                                  {"doors-wide", "Doors open to both sides"},
                                                  {"doors-high", "Doors open up and down"},
                                                  {"blinds", "Venetian blinds"},
                                                  {"clock", "Like the hand of a clock"}}};
constexpr std::array kWipe = {ChoiceParameter("direction", "Direction", kWipes), kPercent, kSoftness};

/// `x` and `y` are shares of width and height, at the middle of a pixel.
float WipeMoment(std::int32_t wipe, float x, float y) {
    constexpr float kBlinds = 8;
    constexpr float kCircle = 2 * std::numbers::pi_v<float>;
    switch (wipe) {
    case 0: return x;
    case 1: return 1 - x;
    case 2: return y;
    case 3: return 1 - y;
    case 4: return (x + y) / 2;
    case 5: return (1 - x + y) / 2;
    case 6: return (x + 1 - y) / 2;
    case 7: return (2 - x - y) / 2;
    case 8: return std::abs(2 * x - 1);
    case 9: return std::abs(2 * y - 1);
    case 10: return y * kBlinds - std::floor(y * kBlinds);
    default: break;
    }
    const float angle = std::atan2(x - 0.5F, 0.5F - y) / kCircle; // from twelve o'clock to the right
    return angle < 0 ? angle + 1 : angle;
}

float Share(std::int32_t pixel, std::int32_t count) {
    return (static_cast<float>(pixel) + 0.5F) / static_cast<float>(count);
}

void RenderWipe(const EffectInput& input, PixelImage& out) {
    const std::int32_t wipe = input.values.Whole("direction");
    RenderByMoment(input, input.values.Fraction("softness"), out, [&](std::int32_t x, std::int32_t y) {
        return WipeMoment(wipe, Share(x, out.width()), Share(y, out.height()));
    });
}

constexpr std::array<EffectChoice, 4> kShapes = {
    {{"circle", "Circle"}, {"rectangle", "Rectangle"}, {"diamond", "Diamond"}, {"cross", "Cross"}}};
constexpr std::array kIris = {ChoiceParameter("shape", "Shape", kShapes), kPercent, kSoftness,
                              ToggleParameter("closing", "Closes", false)};

/// `x` and `y` are pixels from the centre, never negative; the shape reaches the corner at 1.
float IrisMoment(std::int32_t shape, float x, float y, float half_width, float half_height) {
    switch (shape) {
    case 0: return std::sqrt((x * x + y * y) / (half_width * half_width + half_height * half_height));
    case 1: return std::max(x / half_width, y / half_height);
    case 2: return (x / half_width + y / half_height) / 2;
    default: return std::min(x / half_width, y / half_height);
    }
}

void RenderIris(const EffectInput& input, PixelImage& out) {
    const std::int32_t shape = input.values.Whole("shape");
    const bool closing = input.values.Toggle("closing");
    const float half_width = static_cast<float>(out.width()) / 2;
    const float half_height = static_cast<float>(out.height()) / 2;
    RenderByMoment(input, input.values.Fraction("softness"), out, [&](std::int32_t x, std::int32_t y) {
        const float right = std::abs(static_cast<float>(x) + 0.5F - half_width);
        const float down = std::abs(static_cast<float>(y) + 0.5F - half_height);
        const float moment = IrisMoment(shape, right, down, half_width, half_height);
        return closing ? 1 - moment : moment;
    });
}

constexpr std::array<EffectChoice, 2> kOrders = {
    {{"dark", "Dark places first"}, {"light", "Light places first"}}};
constexpr std::array kGradientWipe = {ChoiceParameter("order", "Order", kOrders), kPercent,
                                      PercentParameter("softness", "Softness of the border", 20)};

void RenderGradientWipe(const EffectInput& input, PixelImage& out) {
    const bool light_first = input.values.Whole("order") == 1;
    RenderByMoment(input, input.values.Fraction("softness"), out, [&](std::int32_t x, std::int32_t y) {
        const float luma = static_cast<float>(Luma(input.a.Row(y)[x])) / 255;
        return light_first ? 1 - luma : luma;
    });
}

constexpr std::array kPixelDissolve = {kPercent,
                                       WholeParameter("size", "Size of a tile", 1, 256, 4, kPixelUnit),
                                       WholeParameter("seed", "Pattern number", 0, 9999, 1)};

void RenderPixelDissolve(const EffectInput& input, PixelImage& out) {
    const std::int32_t size = input.values.Whole("size");
    const std::uint32_t series = MixBits(static_cast<std::uint32_t>(input.values.Whole("seed")));
    RenderByMoment(input, 0, out, [&](std::int32_t x, std::int32_t y) {
        return RandomShare(series + static_cast<std::uint32_t>(y / size),
                           static_cast<std::uint32_t>(x / size));
    });
}

} // namespace

const Effect kWipeEffect = {Code("smpt"), "Wipe", kCombineClass, kCompositeClass, 2, kWipe, RenderWipe};
const Effect kIrisEffect = {Code("iris"), "Iris", kCombineClass, kCompositeClass, 2, kIris, RenderIris};
const Effect kGradientWipeEffect = {Code("matt"),  "Gradient Wipe",   kCombineClass, kCompositeClass, 2,
                                    kGradientWipe, RenderGradientWipe};
const Effect kPixelDissolveEffect = {Code("pxds"),   "Pixel Dissolve",   kCombineClass, kCompositeClass, 2,
                                     kPixelDissolve, RenderPixelDissolve};

} // namespace qt
