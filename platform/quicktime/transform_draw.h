#pragma once

#include "platform/quicktime/image_codecs/codec.h"
#include "platform/quicktime/transform_plan.h"

namespace qt {

/// What a drawing is where the image doesn't reach.
enum class Unpainted { kTransparent, kWhite };

/// Draws the visible part of an image, which was decoded, as planned. Around an image that has alpha itself
/// the drawing is transparent, whatever was asked for. The decoded pixels are gone when they are no longer
/// needed. Throws std::bad_alloc.
ComponentResult DrawTransformed(DecodedPart source, const Rect& visible, const TransformPlan& plan,
                                Unpainted unpainted, PixelImage& out);

} // namespace qt
