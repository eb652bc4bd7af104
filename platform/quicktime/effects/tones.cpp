// Effects on lightness: brightness and contrast, levels, solarising, posterising.
#include "platform/quicktime/effects/channel_tables.h"
#include "platform/quicktime/effects/effect.h"

#include <array>
#include <cmath>
#include <numbers>

namespace qt {
namespace {

constexpr std::array kBrightnessContrast = {
    NumberParameter("brightness", "Brightness", -100, 100, 10, "percent"),
    NumberParameter("contrast", "Contrast", -100, 100, 20, "percent"),
};

void RenderBrightnessContrast(const EffectInput& input, PixelImage& out) {
    constexpr double kSteepest = 1000; // a step, at a contrast of 100
    const double brightness = input.values.Fraction("brightness");
    const double angle = (1 + input.values.Fraction("contrast")) * std::numbers::pi / 4;
    const double slope = std::min(std::tan(std::min(angle, std::numbers::pi / 2 - 1e-6)), kSteepest);
    ApplyTable(input.a,
               MakeChannelTable([=](double value) { return (value - 0.5) * slope + 0.5 + brightness; }), out);
}

constexpr std::array kLevels = {
    WholeParameter("black", "Black point", 0, 254, 10),
    WholeParameter("white", "White point", 1, 255, 245),
    NumberParameter("gamma", "Gamma", 0.1, 10, 1.2),
};

void RenderLevels(const EffectInput& input, PixelImage& out) {
    const double black = input.values.Number("black") / 255;
    const double range = std::max(input.values.Number("white") / 255 - black, 1.0 / 255);
    const double exponent = 1 / input.values.Number("gamma");
    ApplyTable(input.a, MakeChannelTable([=](double value) {
                   return std::pow(std::clamp((value - black) / range, 0.0, 1.0), exponent);
               }),
               out);
}

constexpr std::array kSolarize = {
    PercentParameter("threshold", "Turn above", 50),
    PercentParameter("strength", "Strength", 100),
};

void RenderSolarize(const EffectInput& input, PixelImage& out) {
    const double threshold = input.values.Fraction("threshold");
    const double strength = input.values.Fraction("strength");
    ApplyTable(input.a, MakeChannelTable([=](double value) {
                   return value > threshold ? value + (1 - 2 * value) * strength : value;
               }),
               out);
}

constexpr std::array kPosterize = {WholeParameter("levels", "Levels of each colour", 2, 64, 4)};

void RenderPosterize(const EffectInput& input, PixelImage& out) {
    const double levels = input.values.Number("levels");
    ApplyTable(input.a, MakeChannelTable([=](double value) {
                   return std::min(std::floor(value * levels), levels - 1) / (levels - 1);
               }),
               out);
}

} // namespace

const Effect kBrightnessContrastEffect = {
    Code("brco"),        "Brightness and Contrast", kFilterClass, kColourClass, 1,
    kBrightnessContrast, RenderBrightnessContrast};
const Effect kLevelsEffect = {Code("levl"), "Levels", kFilterClass, kColourClass, 1, kLevels, RenderLevels};
const Effect kSolarizeEffect = {Code("solr"), "Solarize",    kFilterClass, kColourClass, 1,
                                kSolarize,    RenderSolarize};
const Effect kPosterizeEffect = {Code("post"), "Posterize",    kFilterClass, kColourClass, 1,
                                 kPosterize,   RenderPosterize};

} // namespace qt
