// What a mapping makes of a rectangle of an image: the frame that it fills, and how the pixels get there.
#pragma once

#include "platform/quicktime/matrices.h"
#include "platform/quicktime/projection.h"

namespace qt {

/// A part of a line, from one place to another (backward: mirrored), that becomes so many pixels.
struct Stretch {
    double from = 0.0;
    double to = 0.0;
    std::int32_t first = 0; ///< of the pixels, in the frame
    std::int32_t pixels = 0;
};

struct TransformPlan {
    std::int32_t left = 0; ///< the frame: the mapped rectangle's bounding box in whole pixels
    std::int32_t top = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    /// The mapped sides lie along the frame's: columns and rows of the image are stretched by themselves,
    /// after they have changed places if `transposed`.
    bool aligned = false;
    bool transposed = false;
    Stretch across; ///< of the visible part, when aligned; in the image's coordinates, after the change
    Stretch down;
    Projection map{};     ///< from the image to the frame, q positive on the rectangle
    double scale_x = 1.0; ///< the most that the mapping makes of a pixel's width, and of its height
    double scale_y = 1.0;
};

/// Plans the drawing of `source`, of which only `visible` has pixels (in it, and not empty). paramErr for a
/// mapping that takes points of the rectangle to infinity or beyond, codecSizeErr when the frame is empty or
/// more than 30,000 pixels wide or high.
ComponentResult PlanTransform(const MatrixRecord& matrix, const Rect& source, const Rect& visible,
                              TransformPlan& plan);

} // namespace qt
