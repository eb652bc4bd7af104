#include "platform/quicktime/transform_plan.h"

#include "platform/quicktime/image_codecs/codec.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace qt {
namespace {

constexpr double kFarthest = 1e9; ///< of a frame from the origin, in pixels
constexpr Fixed kRounding = 2;    ///< units by which an element may differ from what was meant

Projection ToProjection(const MatrixRecord& matrix) {
    Projection map;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            map.rows[row][column] = std::ldexp(matrix.matrix[row][column], column < 2 ? -16 : -30);
        }
    }
    return map;
}

std::array<Point, 4> Corners(const Rect& rectangle) {
    const double left = rectangle.left;
    const double top = rectangle.top;
    const double right = rectangle.right;
    const double bottom = rectangle.bottom;
    return {{{left, top}, {right, top}, {right, bottom}, {left, bottom}}};
}

/// Makes q positive on all corners. False when it has no one sign there.
bool MakePositive(const std::array<Point, 4>& corners, Projection& map) {
    const auto q_at = [&](const Point& corner) { return map.At(2, corner.x, corner.y); };
    if (std::ranges::all_of(corners, [&](const Point& corner) { return q_at(corner) < 0.0; })) {
        for (auto& row : map.rows) {
            for (double& element : row) element = -element;
        }
    }
    return std::ranges::all_of(corners, [&](const Point& corner) { return q_at(corner) > 0.0; });
}

/// Whether an extent in pixels can be that of a frame, and its begin be counted. False for NaN.
bool Holds(double begin, double length) {
    return std::abs(begin) <= kFarthest && length < kMaximumDimension + 0.5;
}

struct Interval {
    std::int32_t begin;
    std::int32_t end;
};
Interval Columns(const Rect& rectangle) {
    return {rectangle.left, rectangle.right};
}
Interval Rows(const Rect& rectangle) {
    return {rectangle.top, rectangle.bottom};
}

/// One direction of an aligned mapping: a place goes to place·scale + offset.
struct Line {
    double scale;
    double offset;
};

/// Plans a direction of the frame and the stretch of the visible part. The frame is as long as the mapped
/// length in whole pixels, wherever it begins: a size that was asked for is met.
ComponentResult PlanLine(const Line& line, const Interval& source, const Interval& visible,
                         std::int32_t& first, std::int32_t& pixels, Stretch& stretch) {
    const auto map = [&](std::int32_t place) { return place * line.scale + line.offset; };
    const double begin = std::min(map(source.begin), map(source.end));
    const double length = std::abs(map(source.end) - map(source.begin));
    if (length == 0.0 || !Holds(begin, length)) return codecSizeErr;
    first = static_cast<std::int32_t>(std::lround(begin));
    pixels = std::max(static_cast<std::int32_t>(std::lround(length)), 1);

    const bool mirrored = line.scale < 0.0;
    const Interval ends = mirrored ? Interval{visible.end, visible.begin} : visible;
    const auto pixel_at = [&](std::int32_t place, std::int32_t lowest) {
        const auto pixel = static_cast<std::int32_t>(std::lround(map(place) - begin));
        return std::clamp(pixel, lowest, pixels - 1 + lowest);
    };
    stretch.from = ends.begin;
    stretch.to = ends.end;
    stretch.first = pixel_at(ends.begin, 0);
    stretch.pixels = std::max(pixel_at(ends.end, 1) - stretch.first, 1);
    return noErr;
}

ComponentResult PlanAligned(const Rect& source, const Rect& visible, TransformPlan& plan) {
    const auto& rows = plan.map.rows;
    const double w = rows[2][2];
    const std::size_t x = plan.transposed ? 1 : 0; ///< what becomes the frame's x
    const Line across = {rows[x][0] / w, rows[2][0] / w};
    const Line down = {rows[1 - x][1] / w, rows[2][1] / w};
    const auto part = [&](const Rect& rectangle, bool columns) {
        return columns ? Columns(rectangle) : Rows(rectangle);
    };
    const bool turned = plan.transposed;
    const auto code =
        PlanLine(across, part(source, !turned), part(visible, !turned), plan.left, plan.width, plan.across);
    if (code != noErr) return code;
    return PlanLine(down, part(source, turned), part(visible, turned), plan.top, plan.height, plan.down);
}

/// Takes the frame of mapped corners. What the rounding of elements can move them by adds no pixels.
ComponentResult PlanFrame(const std::array<Point, 4>& corners, double tolerance, TransformPlan& plan) {
    const auto [left, right] = std::ranges::minmax(corners, {}, &Point::x);
    const auto [top, bottom] = std::ranges::minmax(corners, {}, &Point::y);
    if (!Holds(left.x, right.x - left.x) || !Holds(top.y, bottom.y - top.y)) return codecSizeErr;
    plan.left = static_cast<std::int32_t>(std::floor(left.x + tolerance));
    plan.top = static_cast<std::int32_t>(std::floor(top.y + tolerance));
    plan.width = static_cast<std::int32_t>(std::ceil(right.x - tolerance)) - plan.left;
    plan.height = static_cast<std::int32_t>(std::ceil(bottom.y - tolerance)) - plan.top;
    const auto held = static_cast<std::int32_t>(kMaximumDimension);
    const bool fits = std::min(plan.width, plan.height) > 0 && std::max(plan.width, plan.height) <= held;
    return fits ? noErr : codecSizeErr;
}

/// The longest that the side of a pixel along a row (of the mapping) becomes at any corner.
double LongestSide(const Projection& map, std::size_t row, const std::array<Point, 4>& corners) {
    double longest = 0.0;
    for (const Point& corner : corners) {
        const double q = map.At(2, corner.x, corner.y);
        const Point at = map.Map(corner.x, corner.y);
        const auto& side = map.rows[row];
        longest = std::max(longest, std::hypot(side[0] - at.x * side[2], side[1] - at.y * side[2]) / q);
    }
    return longest;
}

} // namespace

ComponentResult PlanTransform(const MatrixRecord& matrix, const Rect& source, const Rect& visible,
                              TransformPlan& plan) {
    plan.map = ToProjection(matrix);
    const std::array<Point, 4> corners = Corners(source);
    if (!MakePositive(corners, plan.map)) return paramErr;
    const auto& fixed = matrix.matrix;
    const auto is_nothing = [](Fixed element) { return std::abs(std::int64_t{element}) <= kRounding; };
    const bool parallel = is_nothing(fixed[0][2]) && is_nothing(fixed[1][2]);
    const bool upright = is_nothing(fixed[0][1]) && is_nothing(fixed[1][0]);
    plan.transposed = parallel && !upright && is_nothing(fixed[0][0]) && is_nothing(fixed[1][1]);
    plan.aligned = plan.transposed || (parallel && upright);
    plan.scale_x = LongestSide(plan.map, 0, Corners(visible));
    plan.scale_y = LongestSide(plan.map, 1, Corners(visible));
    if (plan.aligned) return PlanAligned(source, visible, plan);

    std::array<Point, 4> mapped;
    std::ranges::transform(corners, mapped.begin(),
                           [&](const Point& corner) { return plan.map.Map(corner.x, corner.y); });
    const double tolerance = (source.right - source.left + source.bottom - source.top) / 65'536.0 + 0.001;
    const auto code = PlanFrame(mapped, std::min(tolerance, 0.25), plan);
    if (code == noErr) plan.map = Product(plan.map, ScaleAndMove(1.0, 1.0, -plan.left, -plan.top));
    return code;
}

} // namespace qt
