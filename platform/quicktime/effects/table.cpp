#include "platform/quicktime/effects/effect.h"

#include <algorithm>
#include <array>

namespace qt {
namespace {

// In the order of the effect dialog: by name, effects with one source first.
constexpr std::array<const Effect*, 24> kEffects = {
    &kBlurEffect,
    &kBrightnessContrastEffect,
    &kTintEffect,
    &kConvolutionEffect,
    &kEdgeDetectionEffect,
    &kEmbossEffect,
    &kFilmNoiseEffect,
    &kHslBalanceEffect,
    &kLevelsEffect,
    &kMosaicEffect,
    &kPosterizeEffect,
    &kRgbBalanceEffect,
    &kSharpenEffect,
    &kSolarizeEffect,
    &kAlphaCompositorEffect,
    &kChannelCompositorEffect,
    &kChromaKeyEffect,
    &kCrossFadeEffect,
    &kGradientWipeEffect,
    &kIrisEffect,
    &kPixelDissolveEffect,
    &kPushEffect,
    &kSlideEffect,
    &kWipeEffect,
};

} // namespace

std::span<const Effect* const> Effects() {
    return kEffects;
}

const Effect* FindEffect(OSType type) {
    const auto found = std::ranges::find(kEffects, type, &Effect::type);
    return found != kEffects.end() ? *found : nullptr;
}

} // namespace qt
