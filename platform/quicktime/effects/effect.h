// What an image effect supplies: the file that draws it, and one row in table.cpp.
#pragma once

#include "platform/quicktime/effects/effect_values.h"
#include "platform/quicktime/pixel_image.h"

namespace qt {

inline constexpr OSType kFilterClass = Code("filt");  ///< major class of effects with one source
inline constexpr OSType kCombineClass = Code("comb"); ///< major class of effects with two
inline constexpr OSType kCompositeClass =
    Code("comp");                                     ///< minor class of all that put one image over another
inline constexpr OSType kFocusClass = Code("focu");   ///< other minor classes: blur and sharpness,
inline constexpr OSType kOutlineClass = Code("line"); ///< edges and relief,
inline constexpr OSType kColourClass = Code("colr");  ///< colours and tones,
inline constexpr OSType kTextureClass = Code("text"); ///< grain and patterns

struct EffectInput {
    const EffectValues& values; ///< in range
    const PixelImage& a;
    const PixelImage* b; ///< never null for an effect with two sources; its size may differ from A's
};

struct Effect {
    OSType type;
    std::string_view name; ///< as lists show it
    OSType major_class;
    OSType minor_class;
    std::int32_t sources; ///< 1 or 2
    std::span<const EffectParameter> parameters;
    /// Paints all of `out`, which is of A's size and marked as having alpha as its sources are. Beyond the
    /// edges of B there is nothing: transparent pixels. May throw std::bad_alloc.
    void (*render)(const EffectInput& input, PixelImage& out);
};

std::span<const Effect* const> Effects();
/// The effect of a type; null when there is none.
const Effect* FindEffect(OSType type);

extern const Effect kBlurEffect;
extern const Effect kSharpenEffect;
extern const Effect kEdgeDetectionEffect;
extern const Effect kEmbossEffect;
extern const Effect kConvolutionEffect;
extern const Effect kBrightnessContrastEffect;
extern const Effect kLevelsEffect;
extern const Effect kRgbBalanceEffect;
extern const Effect kHslBalanceEffect;
extern const Effect kTintEffect;
extern const Effect kSolarizeEffect;
extern const Effect kPosterizeEffect;
extern const Effect kFilmNoiseEffect;
extern const Effect kMosaicEffect;
extern const Effect kCrossFadeEffect;
extern const Effect kChromaKeyEffect;
extern const Effect kAlphaCompositorEffect;
extern const Effect kChannelCompositorEffect;
extern const Effect kWipeEffect;
extern const Effect kIrisEffect;
extern const Effect kGradientWipeEffect;
extern const Effect kPixelDissolveEffect;
extern const Effect kPushEffect;
extern const Effect kSlideEffect;

} // namespace qt
