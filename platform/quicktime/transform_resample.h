// Stretching images along their rows and columns.
#pragma once

#include "platform/quicktime/pixel_image.h"
#include "platform/quicktime/transform_plan.h"

namespace qt {

/// Draws the rectangle of the source that the two stretches span, which lies in it (fractions of pixels
/// count), into theirs of `out`. Shrinking takes all pixels into account; in between, colours follow a cubic
/// curve. Alpha counts. Throws std::bad_alloc.
void Resample(const PixelImage& source, const Stretch& across, const Stretch& down, PixelImage& out);

/// The image with columns and rows in each other's place.
ComponentResult Transpose(const PixelImage& image, PixelImage& out);

} // namespace qt
