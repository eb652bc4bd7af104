#include "platform/quicktime/image_codecs/pict_canvas.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace qt {
namespace {

constexpr std::uint32_t kOpaque = 0xFF00'0000;
constexpr std::int32_t kFarthestOrigin = 1 << 17;

/// What a source without colours does to a pixel where it is black, and where it is white.
struct Ink {
    enum class Action { kLeave, kInvert, kSet };
    Action black = Action::kLeave;
    Action white = Action::kLeave;
    std::uint32_t black_colour = 0;
    std::uint32_t white_colour = 0;

    Ink(const Colours& colours, TransferMode mode) {
        switch (mode.operation) {
        case TransferMode::kCopy:
            black = white = Action::kSet;
            black_colour = colours.fore;
            white_colour = colours.back;
            break;
        case TransferMode::kOr:
            black = Action::kSet;
            black_colour = colours.fore;
            break;
        case TransferMode::kXor: black = Action::kInvert; break;
        case TransferMode::kBic:
            black = Action::kSet;
            black_colour = colours.back;
            break;
        }
        if (mode.inverted) {
            std::swap(black, white);
            std::swap(black_colour, white_colour);
        }
    }

    [[nodiscard]] std::uint32_t Apply(bool is_black, std::uint32_t there) const {
        switch (is_black ? black : white) {
        case Action::kSet: return is_black ? black_colour : white_colour;
        case Action::kInvert: return ~there | kOpaque;
        case Action::kLeave: break;
        }
        return there;
    }
};

/// Bit by bit, with black as all ones.
std::uint32_t Combine(std::uint32_t source, std::uint32_t there, TransferMode mode) {
    if (mode.inverted) source ^= ~kOpaque;
    switch (mode.operation) {
    case TransferMode::kCopy: return source;
    case TransferMode::kOr: return (source & there) | kOpaque;
    case TransferMode::kXor: return ~(source ^ there) | kOpaque;
    case TransferMode::kBic: return there | ~source | kOpaque;
    }
    return source;
}

/// The source column or row of each place of a span that is stretched to another length.
std::int32_t Nearest(std::int32_t place, std::int32_t to, std::int32_t to_size, std::int32_t from,
                     std::int32_t from_size) {
    return from + static_cast<std::int32_t>((2 * std::int64_t{place - to} + 1) * from_size /
                                            (std::int64_t{2} * to_size));
}

std::int64_t Area(const Box& box) {
    return std::int64_t{box.x2 - box.x1} * (box.y2 - box.y1);
}

std::int32_t Remainder(std::int32_t value, std::int32_t divisor) {
    const std::int32_t rest = value % divisor;
    return rest < 0 ? rest + divisor : rest;
}

} // namespace

TransferMode::TransferMode(std::uint32_t mode) {
    if ((mode & ~64U) > 15) return;
    operation = static_cast<Operation>(mode & 3);
    inverted = (mode & 4) != 0;
}

Canvas::Canvas(PixelImage& image, const Rect& frame)
    : image_(image), origin_x_(frame.left), origin_y_(frame.top) {
    constexpr std::int64_t kDrawnOver = 64; ///< times that each pixel may be drawn, as a rule
    constexpr std::int64_t kAlways = 1 << 24;
    constexpr std::int64_t kNever = std::int64_t{1} << 31;
    image_.Fill(kWhite);
    clip_ = Region(Bounds());
    budget_ = std::min(Area(Bounds()) * kDrawnOver + kAlways, kNever);
}

Box Canvas::Bounds() const {
    return {origin_x_, origin_y_, origin_x_ + image_.width(), origin_y_ + image_.height()};
}

void Canvas::MoveOrigin(std::int32_t right, std::int32_t down) {
    origin_x_ = std::clamp(origin_x_ + right, -kFarthestOrigin, kFarthestOrigin);
    origin_y_ = std::clamp(origin_y_ + down, -kFarthestOrigin, kFarthestOrigin);
}

/// The shape's part that can be seen, paid for; nothing when the budget is spent.
Region Canvas::Visible(Region shape) {
    if (IsExhausted()) return {};
    Charge(shape);
    Charge(clip_);
    shape.Intersect(clip_);
    shape.Intersect(Region(Bounds()));
    for (const Box& box : shape.Boxes()) budget_ -= Area(box);
    return shape;
}

void Canvas::Paint(Region shape, const Pattern& pattern, const Colours& colours, TransferMode mode) {
    const Ink ink(colours, mode);
    const Region visible = Visible(std::move(shape));
    for (const Box& box : visible.Boxes()) {
        for (std::int32_t y = box.y1; y < box.y2; ++y) {
            std::uint32_t* pixels = PixelAt(box.x1, y);
            const std::int32_t count = box.x2 - box.x1;
            if (pattern.width > 0) {
                const std::uint32_t* row =
                    &pattern.pixels[static_cast<std::size_t>(Remainder(y, pattern.height)) *
                                    static_cast<std::size_t>(pattern.width)];
                for (std::int32_t x = 0; x < count; ++x) {
                    pixels[x] = Combine(row[Remainder(box.x1 + x, pattern.width)], pixels[x], mode);
                }
                continue;
            }
            const unsigned bits = pattern.bits[static_cast<std::size_t>(y & 7)];
            const bool is_solid = bits == 0 || bits == 255;
            if (is_solid && (bits != 0 ? ink.black : ink.white) == Ink::Action::kSet) {
                std::fill_n(pixels, count, ink.Apply(bits != 0, 0));
                continue;
            }
            for (std::int32_t x = 0; x < count; ++x) {
                pixels[x] = ink.Apply((bits >> (7 - ((box.x1 + x) & 7)) & 1) != 0, pixels[x]);
            }
        }
    }
}

bool Canvas::DrawMap(PixelRows& rows, const PixelMap& map, const Placement& placement) {
    std::vector<std::uint32_t> row(static_cast<std::size_t>(map.Width()));
    std::int32_t taken = 0;
    bool complete = true;
    std::uint32_t some_alphas = 0;
    std::uint32_t all_alphas = kOpaque;
    const auto skip_to = [&](std::int32_t wanted) {
        for (; complete && taken < wanted; ++taken) complete = rows.Skip();
    };
    const auto row_at = [&](std::int32_t wanted) -> const std::uint32_t* {
        skip_to(wanted);
        if (complete && taken == wanted) {
            complete = rows.Next(row.data());
            ++taken;
            if (map.HasAlpha()) {
                for (const std::uint32_t pixel : row) {
                    some_alphas |= pixel;
                    all_alphas &= pixel;
                }
            }
        }
        return complete ? row.data() : nullptr;
    };
    DrawRows(BoxOf(map.bounds), placement, map.is_bitmap, row_at);
    skip_to(map.Height());
    if (!map.HasAlpha()) return complete;
    const bool is_used = Alpha(some_alphas) != 0;
    const bool is_opaque = Alpha(all_alphas) == 0xFF; // as is what was not drawn at all
    has_empty_alpha_ |= !is_used && !is_opaque;
    has_used_alpha_ |= is_used;
    image_.has_alpha |= is_used && !is_opaque;
    return complete;
}

void Canvas::DrawImage(const PixelImage& source, const Placement& placement) {
    image_.has_alpha |= source.has_alpha;
    const Box bounds = {0, 0, source.width(), source.height()};
    DrawRows(bounds, placement, false, [&](std::int32_t row) { return source.Row(row); });
    budget_ -= Area(bounds); // for having been decoded; a large image may fill a small frame once
}

/// Rows and columns of the source count from its bounds' top left.
void Canvas::DrawRows(const Box& source_bounds, const Placement& placement, bool is_bitmap,
                      const RowAt& row_at) {
    const Box& from = placement.from;
    const Box& to = placement.to;
    const std::int32_t from_width = from.x2 - from.x1;
    const std::int32_t from_height = from.y2 - from.y1;
    const std::int32_t to_width = to.x2 - to.x1;
    const std::int32_t to_height = to.y2 - to.y1;
    if (from_width <= 0 || from_height <= 0 || to_width <= 0 || to_height <= 0) return;
    Region shape(to);
    if (placement.mask != nullptr) shape.Intersect(*placement.mask);
    const Region visible = Visible(std::move(shape));
    if (visible.Boxes().empty()) return;

    const Ink ink(placement.colours, placement.mode);
    const bool is_plain =
        !is_bitmap && placement.mode.operation == TransferMode::kCopy && !placement.mode.inverted;
    const std::int32_t source_width = source_bounds.x2 - source_bounds.x1;
    const std::int32_t source_height = source_bounds.y2 - source_bounds.y1;
    const Box extents = visible.Bounds();
    std::vector<std::int32_t> columns(static_cast<std::size_t>(extents.x2 - extents.x1));
    for (std::int32_t x = extents.x1; x < extents.x2; ++x) {
        columns[static_cast<std::size_t>(x - extents.x1)] = std::clamp(
            Nearest(x, to.x1, to_width, from.x1, from_width) - source_bounds.x1, 0, source_width - 1);
    }
    const bool is_unscaled = from_width == to_width && columns.back() - columns.front() ==
                                                           static_cast<std::int32_t>(columns.size()) - 1;
    std::span<const Box> boxes = visible.Boxes();
    for (std::int32_t y = extents.y1; y < extents.y2; ++y) {
        while (!boxes.empty() && boxes.front().y2 <= y) boxes = boxes.subspan(1);
        if (boxes.empty() || boxes.front().y1 > y) continue;
        const std::uint32_t* row = row_at(std::clamp(
            Nearest(y, to.y1, to_height, from.y1, from_height) - source_bounds.y1, 0, source_height - 1));
        if (row == nullptr) return;
        for (const Box& box : boxes) {
            if (box.y1 > y) break;
            std::uint32_t* pixels = PixelAt(box.x1, y);
            const std::int32_t* column = &columns[static_cast<std::size_t>(box.x1 - extents.x1)];
            const std::int32_t count = box.x2 - box.x1;
            if (is_plain && is_unscaled) {
                std::memcpy(pixels, row + *column, static_cast<std::size_t>(count) * sizeof(std::uint32_t));
                continue;
            }
            for (std::int32_t x = 0; x < count; ++x) {
                const std::uint32_t source = row[column[x]];
                pixels[x] = is_bitmap ? ink.Apply(source == kBlack, pixels[x])
                                      : Combine(source, pixels[x], placement.mode);
            }
        }
    }
}

void Canvas::Finish() {
    if (!has_empty_alpha_) return;
    image_.has_alpha |= has_used_alpha_;
    if (image_.has_alpha) return;
    for (std::int32_t y = 0; y < image_.height(); ++y) {
        std::uint32_t* pixels = image_.Row(y);
        for (std::int32_t x = 0; x < image_.width(); ++x) pixels[x] |= kOpaque;
    }
}

} // namespace qt
