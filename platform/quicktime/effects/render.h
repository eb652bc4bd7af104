#pragma once

#include "platform/quicktime/effects/parameter_set.h"

namespace qt {

/// Draws the effect of sources A and B (null: there is none) into `out`, which becomes an image of A's size.
/// Without an effect, or without the second source of one that needs two, that is A unchanged. codecSizeErr,
/// memFullErr.
ComponentResult RenderEffect(const std::optional<EffectSettings>& settings, const PixelImage& a,
                             const PixelImage* b, PixelImage& out);

} // namespace qt
