// Source B comes in from a side, over source A or pushing it out.
#include "platform/quicktime/effects/effect.h"
#include "platform/quicktime/effects/pixel_math.h"
#include "platform/quicktime/effects/rows.h"
#include "platform/quicktime/effects/second_source.h"

#include <array>
#include <cmath>

namespace qt {
namespace {

constexpr std::array<EffectChoice, 4> kSides = {
    {{"left", "The left"}, {"right", "The right"}, {"top", "The top"}, {"bottom", "The bottom"}}};
constexpr std::array kParameters = {ChoiceParameter("from", "B comes from", kSides),
                                    PercentParameter("percent", "Way from A to B", 50)};

/// How far an image has moved, in pixels.
struct Offset {
    std::int32_t right = 0;
    std::int32_t down = 0;
};

/// Where B lies at a share of its way in.
Offset OffsetOfB(std::int32_t side, double share, const PixelImage& out) {
    const auto left = [&](std::int32_t length) {
        return length - static_cast<std::int32_t>(std::lround(share * length));
    };
    switch (side) {
    case 0: return {-left(out.width()), 0};
    case 1: return {left(out.width()), 0};
    case 2: return {0, -left(out.height())};
    default: return {0, left(out.height())};
    }
}

/// A's place when B touches it.
Offset OffsetOfA(std::int32_t side, const Offset& b, const PixelImage& out) {
    switch (side) {
    case 0: return {b.right + out.width(), 0};
    case 1: return {b.right - out.width(), 0};
    case 2: return {0, b.down + out.height()};
    default: return {0, b.down - out.height()};
    }
}

void Render(const EffectInput& input, bool pushes, PixelImage& out) {
    const std::int32_t side = input.values.Whole("from");
    const Offset b = OffsetOfB(side, input.values.Fraction("percent"), out);
    const Offset a = pushes ? OffsetOfA(side, b, out) : Offset{};
    const std::int32_t b_left = std::clamp(b.right, 0, out.width());
    const std::int32_t b_right = std::clamp(b.right + out.width(), 0, out.width());
    DrawInBands(out.height(), PixelCount(out), [&](std::int32_t first, std::int32_t last) {
        SecondSource first_source(input.a, out.width());
        SecondSource second_source(*input.b, out.width());
        for (std::int32_t y = first; y < last; ++y) {
            std::uint32_t* row = out.Row(y);
            std::copy_n(first_source.Row(y - a.down, a.right), out.width(), row);
            if (y < b.down || y >= b.down + out.height()) continue;
            const std::uint32_t* coming = second_source.Row(y - b.down, b.right);
            std::copy(coming + b_left, coming + b_right, row + b_left);
        }
    });
}

void RenderPush(const EffectInput& input, PixelImage& out) {
    Render(input, true, out);
}

void RenderSlide(const EffectInput& input, PixelImage& out) {
    Render(input, false, out);
}

} // namespace

const Effect kPushEffect = {Code("push"), "Push", kCombineClass, kCompositeClass, 2, kParameters, RenderPush};
const Effect kSlideEffect = {Code("slid"), "Slide",    kCombineClass, kCompositeClass, 2,
                             kParameters,  RenderSlide};

} // namespace qt
