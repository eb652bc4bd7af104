#include "platform/quicktime/image_codecs/pict_region.h"

#include "platform/quicktime/modules/pixman_library.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace qt {
namespace {

constexpr std::uint32_t kEndOfLine = 0x7FFF;
constexpr std::size_t kMostBoxes = 1 << 18;
constexpr std::int64_t kMostCrossings = 1 << 22; ///< of a polygon's edges with rows

void AddSpan(std::vector<Box>& boxes, std::int32_t y, std::int32_t left, std::int32_t right) {
    if (left < right) boxes.push_back({left, y, right, y + 1});
}

/// The columns whose middles lie in an ellipse of these half axes around a centre, in the row whose middle
/// is `above` over it.
std::pair<std::int32_t, std::int32_t> EllipseSpan(double centre, double half_width, double half_height,
                                                  double above) {
    const double part = 1.0 - (above * above) / (half_height * half_height);
    const double reach = part > 0.0 ? half_width * std::sqrt(part) : 0.0;
    return {static_cast<std::int32_t>(std::ceil(centre - reach - 0.5)),
            static_cast<std::int32_t>(std::ceil(centre + reach - 0.5))};
}

/// Puts a coordinate into a sorted row of them, or takes it out where it stands already.
void Toggle(std::vector<std::int32_t>& row, std::int32_t x) {
    const auto place = std::ranges::lower_bound(row, x);
    if (place != row.end() && *place == x) {
        row.erase(place);
    } else {
        row.insert(place, x);
    }
}

/// Row and column.
using Crossing = std::pair<std::int32_t, std::int32_t>;

struct Edge {
    Point upper;
    Point lower;
};

/// The edge of a closed polygon that begins at a point.
Edge EdgeFrom(std::span<const Point> points, std::size_t index) {
    const Point& one = points[index];
    const Point& other = points[(index + 1) % points.size()];
    return one.y > other.y ? Edge{other, one} : Edge{one, other};
}

/// The rows whose middles an edge crosses.
std::pair<std::int32_t, std::int32_t> EdgeRows(const Point& upper, const Point& lower, const Box& within) {
    const auto row = [&](double y) {
        return static_cast<std::int32_t>(std::ceil(std::clamp<double>(y, within.y1, within.y2) - 0.5));
    };
    return {row(upper.y), row(lower.y)};
}

} // namespace

Region::Region() {
    g_pixman->region32_init(&region_);
}

Region::Region(const Box& box) {
    const bool empty = box.x1 >= box.x2 || box.y1 >= box.y2;
    if (empty) {
        g_pixman->region32_init(&region_);
    } else {
        g_pixman->region32_init_with_extents(&region_, &box);
    }
}

Region::Region(std::span<const Box> boxes) {
    if (g_pixman->region32_init_rects(&region_, boxes.data(), static_cast<int>(boxes.size())) == 0)
        throw std::bad_alloc();
}

Region::Region(const Region& other) : Region() {
    if (g_pixman->region32_copy(&region_, &other.region_) == 0) throw std::bad_alloc();
}

Region::Region(Region&& other) noexcept : Region() {
    std::swap(region_, other.region_);
}

Region& Region::operator=(Region other) noexcept {
    std::swap(region_, other.region_);
    return *this;
}

Region::~Region() {
    g_pixman->region32_fini(&region_);
}

void Region::Intersect(const Region& other) {
    if (g_pixman->region32_intersect(&region_, &region_, &other.region_) == 0) throw std::bad_alloc();
}

void Region::Subtract(const Region& other) {
    if (g_pixman->region32_subtract(&region_, &region_, &other.region_) == 0) throw std::bad_alloc();
}

Region Region::Shrunk(std::int32_t width, std::int32_t height) const {
    Region shrunk = *this;
    for (const auto& [right, down] : {std::pair(width, 0), {-width, 0}, {0, height}, {0, -height}}) {
        Region moved = *this;
        g_pixman->region32_translate(&moved.region_, right, down);
        shrunk.Intersect(moved);
    }
    return shrunk;
}

std::span<const Box> Region::Boxes() const {
    int count = 0;
    const Box* boxes = g_pixman->region32_rectangles(&region_, &count);
    return {boxes, static_cast<std::size_t>(count)};
}

Box Region::Bounds() const {
    return region_.extents;
}

Box BoxOf(const Rect& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

Region ReadRegion(PictCursor block) {
    const Box bounds = BoxOf(block.ReadRect());
    if (block.Remaining() < 2) return Region(bounds);
    std::vector<std::int32_t> row; // where the current row changes between outside and inside
    std::vector<Box> boxes;
    std::int32_t y = block.Short();
    while (y != static_cast<std::int32_t>(kEndOfLine) && !block.Failed()) {
        for (std::uint32_t x = block.Word(); x != kEndOfLine && !block.Failed(); x = block.Word()) {
            Toggle(row, static_cast<std::int16_t>(x));
        }
        const std::int32_t next = block.Short();
        const bool last = next == static_cast<std::int32_t>(kEndOfLine);
        for (std::size_t i = 0; !last && next > y && i + 1 < row.size(); i += 2) {
            boxes.push_back({row[i], y, row[i + 1], next});
        }
        if (boxes.size() > kMostBoxes) return Region(bounds);
        y = next;
    }
    return Region(boxes);
}

Region OvalRegion(const Box& box, const Box& within) {
    return RoundRectRegion(box, box.x2 - box.x1, box.y2 - box.y1, within);
}

Region RoundRectRegion(const Box& box, std::int32_t oval_width, std::int32_t oval_height, const Box& within) {
    const double half_width = std::clamp(oval_width, 0, std::max(box.x2 - box.x1, 0)) / 2.0;
    const double half_height = std::clamp(oval_height, 0, std::max(box.y2 - box.y1, 0)) / 2.0;
    if (half_width == 0.0 || half_height == 0.0) return Region(box);
    std::vector<Box> boxes;
    const std::int32_t end = std::min(box.y2, within.y2);
    for (std::int32_t y = std::max(box.y1, within.y1); y < end; ++y) {
        const double middle = y + 0.5;
        const double above = std::max({box.y1 + half_height - middle, middle - (box.y2 - half_height), 0.0});
        const std::int32_t left = EllipseSpan(box.x1 + half_width, half_width, half_height, above).first;
        const std::int32_t right = EllipseSpan(box.x2 - half_width, half_width, half_height, above).second;
        AddSpan(boxes, y, left, right);
    }
    return Region(boxes);
}

Region WedgeRegion(const Box& box, int start, int angle, const Box& within) {
    constexpr int kStep = 30; // short enough that the outline stays outside of the box's ellipse
    constexpr double kReach = 2.0;
    if (angle < 0) {
        start += angle;
        angle = -angle;
    }
    if (angle >= 360) return Region(box);
    const Point centre = {(box.x1 + box.x2) / 2.0, (box.y1 + box.y2) / 2.0};
    std::vector<Point> points = {centre};
    for (int part = 0;; part = std::min(part + kStep, angle)) {
        const double radians = (start + part) * std::numbers::pi / 180.0;
        points.push_back({centre.x + kReach * (box.x2 - box.x1) / 2.0 * std::sin(radians),
                          centre.y - kReach * (box.y2 - box.y1) / 2.0 * std::cos(radians)});
        if (part == angle) break;
    }
    return PolygonRegion(points, within);
}

std::int64_t CrossingsOf(std::span<const Point> points, const Box& within) {
    std::int64_t count = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const auto [upper, lower] = EdgeFrom(points, i);
        const auto [first, end] = EdgeRows(upper, lower, within);
        count += std::max(end - first, 0);
    }
    return count;
}

Region PolygonRegion(std::span<const Point> points, const Box& within) {
    std::vector<Crossing> crossings;
    if (CrossingsOf(points, within) > kMostCrossings) return {};
    for (std::size_t i = 0; i < points.size(); ++i) {
        const auto [upper, lower] = EdgeFrom(points, i);
        const auto [first, end] = EdgeRows(upper, lower, within);
        for (std::int32_t y = first; y < end; ++y) {
            const double x = upper.x + (lower.x - upper.x) * (y + 0.5 - upper.y) / (lower.y - upper.y);
            crossings.emplace_back(y, static_cast<std::int32_t>(std::ceil(x - 0.5)));
        }
    }
    std::ranges::sort(crossings);
    std::vector<Box> boxes;
    for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
        const auto [y, from] = crossings[i];
        AddSpan(boxes, y, from, crossings[i + 1].second);
    }
    return Region(boxes);
}

Region LineRegion(std::int32_t from_x, std::int32_t from_y, std::int32_t to_x, std::int32_t to_y,
                  std::int32_t pen_width, std::int32_t pen_height, const Box& within) {
    if (pen_width <= 0 || pen_height <= 0) return {};
    if (from_y > to_y) {
        std::swap(from_x, to_x);
        std::swap(from_y, to_y);
    }
    if (from_y == to_y || from_x == to_x) {
        return Region(
            Box{std::min(from_x, to_x), from_y, std::max(from_x, to_x) + pen_width, to_y + pen_height});
    }
    const double slope = static_cast<double>(to_x - from_x) / (to_y - from_y);
    // Steep lines have one place in a row, flat ones all whose nearest row it is.
    const auto x_at = [&](double y) { return from_x + slope * (y - from_y); };
    const auto held = [&](double x) {
        const auto column = static_cast<std::int32_t>(x);
        return std::clamp(column, std::min(from_x, to_x), std::max(from_x, to_x));
    };
    const auto places = [&](std::int32_t y) -> std::pair<std::int32_t, std::int32_t> {
        if (std::abs(slope) <= 1.0) {
            const std::int32_t column = held(std::floor(x_at(y) + 0.5));
            return {column, column};
        }
        const double before = x_at(y - 0.5);
        const double behind = x_at(y + 0.5);
        return {held(std::ceil(std::min(before, behind))), held(std::ceil(std::max(before, behind)) - 1.0)};
    };
    std::vector<Box> boxes;
    const std::int32_t end = std::min(to_y + pen_height, within.y2);
    for (std::int32_t y = std::max(from_y, within.y1); y < end; ++y) {
        const auto first = places(std::clamp(y - pen_height + 1, from_y, to_y));
        const auto last = places(std::clamp(y, from_y, to_y));
        AddSpan(boxes, y, std::min(first.first, last.first), std::max(first.second, last.second) + pen_width);
    }
    return Region(boxes);
}

} // namespace qt
