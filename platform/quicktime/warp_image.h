// Drawing images through mappings that turn, skew or bend them.
#pragma once

#include "platform/quicktime/pixel_image.h"
#include "platform/quicktime/projection.h"

namespace qt {

/// A rectangle of an image, at any places between its pixels.
struct Area {
    double left;
    double top;
    double right;
    double bottom;
};

/// Draws an area of the source, which lies in it, through a mapping to `out`, which is large enough, has
/// alpha and becomes transparent where the area is not. The mapping's q is positive on the area. Edges are
/// smooth, colours between pixels follow a cubic curve, and where the mapping shrinks, a pixel is the mean of
/// what it covers. A mapping that leaves no area draws nothing. Throws std::bad_alloc.
void WarpImage(const PixelImage& source, const Area& area, const Projection& map, PixelImage& out);

} // namespace qt
