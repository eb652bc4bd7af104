// QuickDraw regions: sets of pixels.
#pragma once

#include "platform/quicktime/types.h"

#include <memory>
#include <vector>

struct QuickDrawRegion;
using RgnHandle = QuickDrawRegion*;

/// An empty region; null without memory, or without the module of regions.
RgnHandle NewRgn();
void DisposeRgn(RgnHandle region); ///< null is allowed
/// The region becomes the rectangle; empty when its edges are in the wrong order.
void RectRgn(RgnHandle region, const Rect* rectangle);
/// What is in one of the two but not in both. `result` may be either of them.
void XorRgn(RgnHandle first, RgnHandle second, RgnHandle result);
/// What is in the first but not in the second.
void DiffRgn(RgnHandle first, RgnHandle second, RgnHandle result);
void CopyRgn(RgnHandle source, RgnHandle result);

namespace qt {

struct RegionDisposer {
    void operator()(RgnHandle region) const { DisposeRgn(region); }
};

/// Owner of a region.
using OwnedRegion = std::unique_ptr<QuickDrawRegion, RegionDisposer>;

/// The region's pixels as rectangles that don't overlap, from top to bottom. Throws std::bad_alloc.
std::vector<Rect> RegionRectangles(RgnHandle region);

} // namespace qt
