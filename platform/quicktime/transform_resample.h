// Stretching images along their rows and columns.
#pragma once

#include "platform/quicktime/pixel_image.h"
#include "platform/quicktime/transform_plan.h"

namespace qt {

/// From one pixel of a line to the one behind the last.
struct PixelSpan {
    std::int32_t begin = 0;
    std::int32_t end = 0;
};

/// The pixels that show nothing but what lies between two places of a line of `length` pixels, in any order.
/// In a line that was reduced when it was decoded a pixel may lie across an edge, and shows what is beyond,
/// too; at the line's own end nothing is. At least one pixel lies between the places.
PixelSpan PixelsBetween(double from, double to, std::int32_t length);

/// Draws the rectangle of the source that the two stretches span, which lies in it (fractions of pixels
/// count), into theirs of `out`. Shrinking takes all pixels into account; in between, colours follow a cubic
/// curve. Alpha counts. Throws std::bad_alloc.
void Resample(const PixelImage& source, const Stretch& across, const Stretch& down, PixelImage& out);

/// The image with columns and rows in each other's place.
ComponentResult Transpose(const PixelImage& image, PixelImage& out);

} // namespace qt
