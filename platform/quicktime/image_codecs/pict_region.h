// Sets of pixels as QuickDraw draws them: rectangles, ovals, polygons, lines, regions. Shapes are cut at the
// rows of `within`, so that nothing is computed for what can't be seen.
#pragma once

#include "platform/quicktime/image_codecs/pict_format.h"

#include <pixman.h>
#include <span>
#include <vector>

namespace qt {

/// x1, y1 and, one past the last column and row, x2, y2.
using Box = pixman_box32_t;

struct Point {
    double x = 0.0;
    double y = 0.0;
};

class Region {
public:
    Region();
    explicit Region(const Box& box);
    explicit Region(std::span<const Box> boxes); ///< their union
    Region(const Region& other);
    Region(Region&& other) noexcept;
    Region& operator=(Region other) noexcept;
    ~Region();

    void Intersect(const Region& other);
    void Subtract(const Region& other);

    /// What is left when an edge of that width and height is taken off all around.
    [[nodiscard]] Region Shrunk(std::int32_t width, std::int32_t height) const;

    /// From top to bottom in bands of equal rows, each from left to right; none overlaps another.
    [[nodiscard]] std::span<const Box> Boxes() const;
    [[nodiscard]] Box Bounds() const;

private:
    pixman_region32_t region_;
};

Box BoxOf(const Rect& rect);

/// A region as pictures store it, from behind its size. One too intricate is its bounding box.
Region ReadRegion(PictCursor block);
Region OvalRegion(const Box& box, const Box& within);
/// Corners are quarters of an oval of that size.
Region RoundRectRegion(const Box& box, std::int32_t oval_width, std::int32_t oval_height, const Box& within);
/// The part of a box between two angles in degrees, clockwise from 12 o'clock; a right angle goes to the
/// corners of the box whatever its shape.
Region WedgeRegion(const Box& box, int start, int angle, const Box& within);
/// What lies within an odd number of the polygon's loops, whose last point joins the first.
Region PolygonRegion(std::span<const Point> points, const Box& within);
/// Crossings of the polygon's edges with rows, which its time grows with.
std::int64_t CrossingsOf(std::span<const Point> points, const Box& within);
/// What a pen of that size covers on its way; it hangs to the right of and below its place.
Region LineRegion(std::int32_t from_x, std::int32_t from_y, std::int32_t to_x, std::int32_t to_y,
                  std::int32_t pen_width, std::int32_t pen_height, const Box& within);

} // namespace qt
