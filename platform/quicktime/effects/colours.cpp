// Effects on hue: balance of red, green and blue, balance of hue, saturation and lightness, tint.
#include "platform/quicktime/effects/channel_tables.h"
#include "platform/quicktime/effects/effect.h"

#include <array>
#include <cmath>

namespace qt {
namespace {

constexpr std::array kRgbBalance = {
    NumberParameter("red", "Red", 0, 200, 120, "percent"),
    NumberParameter("green", "Green", 0, 200, 100, "percent"),
    NumberParameter("blue", "Blue", 0, 200, 80, "percent"),
};

void RenderRgbBalance(const EffectInput& input, PixelImage& out) {
    const auto table = [&](std::string_view key) {
        return MakeChannelTable(
            [factor = input.values.Fraction(key)](double value) { return value * factor; });
    };
    ApplyTables(input.a, table("red"), table("green"), table("blue"), out);
}

constexpr std::array kHslBalance = {
    NumberParameter("hue", "Hue", -180, 180, 30, "degrees"),
    NumberParameter("saturation", "Saturation", -100, 100, 0, "percent"),
    NumberParameter("lightness", "Lightness", -100, 100, 0, "percent"),
};

/// Hue in sixths of the circle from red, 0 to 6; saturation and lightness 0 to 1.
struct Hsl {
    float hue;
    float saturation;
    float lightness;
};

Hsl ToHsl(std::uint32_t pixel) {
    const float red = static_cast<float>(Red(pixel)) / 255;
    const float green = static_cast<float>(Green(pixel)) / 255;
    const float blue = static_cast<float>(Blue(pixel)) / 255;
    const float most = std::max({red, green, blue});
    const float least = std::min({red, green, blue});
    const float range = most - least;
    const float lightness = (most + least) / 2;
    if (range == 0) return {0, 0, lightness};
    const float saturation = range / (1 - std::abs(2 * lightness - 1));
    float hue = 0;
    if (most == red) {
        hue = (green - blue) / range + (green < blue ? 6.0F : 0.0F);
    } else if (most == green) {
        hue = (blue - red) / range + 2;
    } else {
        hue = (red - green) / range + 4;
    }
    return {hue, saturation, lightness};
}

std::uint32_t FromHsl(const Hsl& colour, std::uint32_t alpha) {
    const float chroma = (1 - std::abs(2 * colour.lightness - 1)) * colour.saturation;
    // Each channel rises, stays and falls over the circle, a third of it behind the one before.
    const auto channel = [&](float behind) {
        float place = colour.hue + behind;
        if (place >= 6) place -= 6;
        const float share = std::clamp(std::abs(place - 3) - 1, 0.0F, 1.0F);
        return ToByte((colour.lightness + (share - 0.5F) * chroma) * 255);
    };
    return Pixel(channel(0), channel(4), channel(2), alpha);
}

/// Towards 1 for a positive share, towards 0 for a negative one.
float Shift(float value, float share) {
    return share > 0 ? value + (1 - value) * share : value * (1 + share);
}

void RenderHslBalance(const EffectInput& input, PixelImage& out) {
    const auto turn = static_cast<float>((input.values.Number("hue") + 360) / 60);
    const auto saturation = static_cast<float>(input.values.Fraction("saturation"));
    const auto lightness = static_cast<float>(input.values.Fraction("lightness"));
    EachRow(out, [&](std::int32_t y) {
        const std::uint32_t* source = input.a.Row(y);
        std::uint32_t* row = out.Row(y);
        for (std::int32_t x = 0; x < out.width(); ++x) {
            Hsl colour = ToHsl(source[x]);
            colour.hue += turn;
            while (colour.hue >= 6) colour.hue -= 6;
            if (colour.saturation > 0) colour.saturation = Shift(colour.saturation, saturation);
            colour.lightness = Shift(colour.lightness, lightness);
            row[x] = FromHsl(colour, Alpha(source[x]));
        }
    });
}

constexpr std::array kTint = {
    ColourParameter("dark", "Darkest colour", 0x2B1D0E),
    ColourParameter("light", "Lightest colour", 0xFFF3D6),
    PercentParameter("strength", "Strength", 100),
};

void RenderTint(const EffectInput& input, PixelImage& out) {
    const std::uint32_t dark = input.values.Colour("dark");
    const std::uint32_t light = input.values.Colour("light");
    const auto strength = static_cast<std::uint32_t>(std::lround(input.values.Fraction("strength") * 255));
    std::array<std::uint32_t, 256> tints{};
    for (std::uint32_t luma = 0; luma < tints.size(); ++luma)
        tints[luma] = MixChannels(dark, light, luma) & 0x00FF'FFFF;
    EachRow(out, [&](std::int32_t y) {
        const std::uint32_t* source = input.a.Row(y);
        std::uint32_t* row = out.Row(y);
        for (std::int32_t x = 0; x < out.width(); ++x) {
            const std::uint32_t alpha = source[x] & 0xFF00'0000;
            row[x] = MixChannels(source[x], tints[Luma(source[x])] | alpha, strength);
        }
    });
}

} // namespace

const Effect kRgbBalanceEffect = {Code("rgbb"), "RGB Balance",   kFilterClass, kColourClass, 1,
                                  kRgbBalance,  RenderRgbBalance};
const Effect kHslBalanceEffect = {Code("hslb"), "HSL Balance",   kFilterClass, kColourClass, 1,
                                  kHslBalance,  RenderHslBalance};
const Effect kTintEffect = {Code("tint"), "Color Tint", kFilterClass, kColourClass, 1, kTint, RenderTint};

} // namespace qt
