#include "platform/quicktime/warp_image.h"

#include "platform/quicktime/cubic.h"
#include "platform/quicktime/pixel_vectors.h"
#include "platform/quicktime/transform_bands.h"
#include "platform/quicktime/transform_resample.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace qt {
namespace {

constexpr std::uint32_t kWhite = Pixel(255, 255, 255);
constexpr std::uint32_t kClear = Pixel(255, 255, 255, 0);
constexpr std::int32_t kRun = 16; ///< pixels for which the mapping is taken to be flat

/// Colours of the source at places between its pixels. Beyond the area's pixels, the outermost go on.
class Sampler {
public:
    Sampler(const PixelImage& source, const Area& area) : source_(source) {
        const PixelSpan columns = PixelsBetween(area.left, area.right, source.width());
        const PixelSpan rows = PixelsBetween(area.top, area.bottom, source.height());
        left_ = columns.begin;
        right_ = columns.end - 1;
        top_ = rows.begin;
        bottom_ = rows.end - 1;
    }

    template <bool kAlpha>
    [[nodiscard]] Float4 Cubic(const Point& at) const {
        const Place x = PlaceOf(at.x, left_, right_);
        const Place y = PlaceOf(at.y, top_, bottom_);
        const std::array<float, 4> across = Shares(x.fraction);
        const std::array<float, 4> down = Shares(y.fraction);
        Float4 sum = {};
        for (std::int32_t j = 0; j < 4; ++j) {
            const std::uint32_t* row = source_.Row(std::clamp(y.pixel + j - 1, top_, bottom_));
            Float4 line = {};
            if (x.pixel > left_ && x.pixel + 2 <= right_) {
                for (std::size_t i = 0; i < 4; ++i)
                    line += across[i] * Load<kAlpha>(row[x.pixel - 1 + static_cast<std::int32_t>(i)]);
            } else {
                for (std::size_t i = 0; i < 4; ++i) {
                    line += across[i] *
                            Load<kAlpha>(
                                row[std::clamp(x.pixel + static_cast<std::int32_t>(i) - 1, left_, right_)]);
                }
            }
            sum += down[static_cast<std::size_t>(j)] * line;
        }
        return sum;
    }

    template <bool kAlpha>
    [[nodiscard]] Float4 Linear(const Point& at) const {
        const Place x = PlaceOf(at.x, left_, right_);
        const Place y = PlaceOf(at.y, top_, bottom_);
        const std::uint32_t* upper = source_.Row(std::max(y.pixel, top_));
        const std::uint32_t* lower = source_.Row(std::min(y.pixel + 1, bottom_));
        const std::int32_t west = std::max(x.pixel, left_);
        const std::int32_t east = std::min(x.pixel + 1, right_);
        const Float4 above = Between(Load<kAlpha>(upper[west]), Load<kAlpha>(upper[east]), x.fraction);
        const Float4 below = Between(Load<kAlpha>(lower[west]), Load<kAlpha>(lower[east]), x.fraction);
        return Between(above, below, y.fraction);
    }

private:
    /// A place from the centre of a pixel on.
    struct Place {
        std::int32_t pixel;
        float fraction;
    };

    static Place PlaceOf(double at, std::int32_t first, std::int32_t last) {
        const double held = std::clamp(at - 0.5, double(first), double(last));
        const auto pixel = static_cast<std::int32_t>(held);
        return {pixel, static_cast<float>(held - pixel)};
    }

    static std::array<float, 4> Shares(float fraction) {
        return {qt::Cubic(1.0F + fraction), qt::Cubic(fraction), qt::Cubic(1.0F - fraction),
                qt::Cubic(2.0F - fraction)};
    }

    static Float4 Between(Float4 first, Float4 second, float share) {
        return first + share * (second - first);
    }

    template <bool kAlpha>
    static Float4 Load(std::uint32_t pixel) {
        return kAlpha ? LoadTransparentPixel(pixel) : LoadPixel(pixel);
    }

    const PixelImage& source_;
    std::int32_t left_ = 0; ///< the outermost pixels
    std::int32_t top_ = 0;
    std::int32_t right_ = 0;
    std::int32_t bottom_ = 0;
};

/// How the place in the source moves from pixel to pixel of a row, and from row to row.
struct Steps {
    Point across;
    Point down;

    /// What a pixel covers of the source in each direction.
    [[nodiscard]] Point Reach() const {
        constexpr double kLeast = 1e-9;
        return {std::max(std::hypot(across.x, down.x), kLeast),
                std::max(std::hypot(across.y, down.y), kLeast)};
    }
};

/// The share of a pixel's reach that lies between two places.
double Overlap(double at, double reach, double first, double end) {
    const double covered = std::min(at + reach / 2.0, end) - std::max(at - reach / 2.0, first);
    return std::clamp(covered / reach, 0.0, 1.0);
}

bool IsWithin(double at, double reach, double first, double end) {
    return at - reach / 2.0 >= first && at + reach / 2.0 <= end;
}

/// How many places of a step are looked at: as many as it has pixels of the source, within reason.
std::int32_t ProbesFor(const Point& step) {
    constexpr double kFew = 0.25; ///< of a pixel, which one place more would not be worth
    constexpr double kMost = 32.0;
    const double length = std::hypot(step.x, step.y) - kFew;
    return length > 1.0 ? static_cast<std::int32_t>(std::min(std::ceil(length), kMost)) : 1;
}

template <bool kAlpha>
Float4 ColourAt(const Sampler& sampler, const Point& at, const Steps& steps, std::int32_t columns,
                std::int32_t rows) {
    if (columns == 1 && rows == 1) return sampler.Cubic<kAlpha>(at);
    Float4 sum = {};
    for (std::int32_t j = 0; j < rows; ++j) {
        const double below = (j + 0.5) / rows - 0.5;
        for (std::int32_t i = 0; i < columns; ++i) {
            const double right = (i + 0.5) / columns - 0.5;
            sum += sampler.Linear<kAlpha>({at.x + right * steps.across.x + below * steps.down.x,
                                           at.y + right * steps.across.y + below * steps.down.y});
        }
    }
    return sum * (1.0F / static_cast<float>(columns * rows));
}

class Warp {
public:
    Warp(const PixelImage& source, const Area& area, const Projection& map, PixelImage& out)
        : sampler_(source, area),
          area_(area),
          inverse_(Inverse(map)),
          out_(out),
          outside_(out.has_alpha ? kClear : kWhite) {
        corners_ = {map.Map(area.left, area.top), map.Map(area.right, area.top),
                    map.Map(area.right, area.bottom), map.Map(area.left, area.bottom)};
        if (inverse_.At(2, corners_[0].x, corners_[0].y) < 0.0) {
            for (auto& row : inverse_.rows) {
                for (double& element : row) element = -element;
            }
        }
    }

    template <bool kAlpha>
    void DrawRow(std::int32_t y) {
        std::uint32_t* row = out_.Row(y);
        const auto [first, end] = PixelsOf(y);
        std::fill(row, row + first, outside_);
        std::fill(row + end, row + out_.width(), outside_);
        for (std::int32_t x = first; x < end;) {
            // Near where the mapping goes to infinity it is flat nowhere.
            const bool flat = end - x >= kRun && DepthAt(x, y) > 0.0 && DepthAt(x + kRun - 1, y) > 0.0;
            const std::int32_t count = flat ? kRun : 1;
            DrawRun<kAlpha>(x, y, count, row + x);
            x += count;
        }
    }

private:
    /// q of the inverse at a pixel's centre: positive on this side of infinity.
    [[nodiscard]] double DepthAt(double x, double y) const { return inverse_.At(2, x + 0.5, y + 0.5); }

    [[nodiscard]] Steps StepsAt(double x, double y) const {
        const double q = inverse_.At(2, x, y);
        const Point at = inverse_.Map(x, y);
        const auto& [across, down, move] = inverse_.rows;
        return {{(across[0] - at.x * across[2]) / q, (across[1] - at.y * across[2]) / q},
                {(down[0] - at.x * down[2]) / q, (down[1] - at.y * down[2]) / q}};
    }

    /// The pixels of a row that the area may reach.
    [[nodiscard]] std::pair<std::int32_t, std::int32_t> PixelsOf(std::int32_t y) const {
        constexpr double kMargin = 1.0; ///< pixels that a smooth edge may reach into
        const double top = y - kMargin;
        const double bottom = y + 1.0 + kMargin;
        double left = out_.width();
        double right = 0.0;
        for (std::size_t i = 0; i < corners_.size(); ++i) {
            Point upper = corners_[i];
            Point lower = corners_[(i + 1) % corners_.size()];
            if (upper.y > lower.y) std::swap(upper, lower);
            if (upper.y > bottom || lower.y < top) continue;
            const double height = std::max(lower.y - upper.y, 1e-9);
            const auto x_at = [&](double at) {
                return upper.x + (lower.x - upper.x) * std::clamp((at - upper.y) / height, 0.0, 1.0);
            };
            const auto [west, east] = std::minmax({x_at(top), x_at(bottom)});
            left = std::min(left, west);
            right = std::max(right, east);
        }
        const auto first =
            static_cast<std::int32_t>(std::clamp(std::floor(left - kMargin), 0.0, double(out_.width())));
        const auto end =
            static_cast<std::int32_t>(std::clamp(std::ceil(right + kMargin), 0.0, double(out_.width())));
        return {first, std::max(first, end)};
    }

    /// Draws pixels for which the mapping is taken to be flat.
    template <bool kAlpha>
    void DrawRun(std::int32_t x, std::int32_t y, std::int32_t count, std::uint32_t* pixels) const {
        if (DepthAt(x, y) <= 0.0) {
            std::fill_n(pixels, count, outside_);
            return;
        }
        const Steps steps = StepsAt(x + count / 2.0, y + 0.5);
        const Point reach = steps.Reach();
        const std::int32_t columns = ProbesFor(steps.across);
        const std::int32_t rows = ProbesFor(steps.down);
        const auto is_within = [&](std::int32_t at_x) {
            const Point at = inverse_.Map(at_x + 0.5, y + 0.5);
            return IsWithin(at.x, reach.x, area_.left, area_.right) &&
                   IsWithin(at.y, reach.y, area_.top, area_.bottom);
        };
        const bool within = is_within(x) && is_within(x + count - 1);
        for (std::int32_t i = 0; i < count; ++i) {
            const Point at = inverse_.Map(x + i + 0.5, y + 0.5);
            double coverage = 1.0;
            if (!within) {
                coverage = Overlap(at.x, reach.x, area_.left, area_.right) *
                           Overlap(at.y, reach.y, area_.top, area_.bottom);
                if (!(coverage > 0.0)) { // nor where steps are beyond numbers
                    pixels[i] = outside_;
                    continue;
                }
            }
            const Float4 colour = ColourAt<kAlpha>(sampler_, at, steps, columns, rows);
            pixels[i] =
                within && !kAlpha ? OpaquePixel(colour) : EdgePixel(colour, static_cast<float>(coverage));
        }
    }

    /// A pixel of which the source covers a part.
    [[nodiscard]] std::uint32_t EdgePixel(Float4 colour, float coverage) const {
        if (outside_ == kClear) return TransparentPixel(colour * coverage);
        return OpaquePixel(colour * coverage + 255.0F * (1.0F - coverage));
    }

    Sampler sampler_;
    Area area_;
    Projection inverse_; ///< from pixels of `out` to the source
    PixelImage& out_;
    std::uint32_t outside_;        ///< what a pixel is that the source doesn't reach
    std::array<Point, 4> corners_; ///< of the area, in `out`
};

} // namespace

void WarpImage(const PixelImage& source, const Area& area, const Projection& map, PixelImage& out) {
    if (Determinant(map) == 0.0) {
        out.Fill(out.has_alpha ? kClear : kWhite);
        return;
    }
    Warp warp(source, area, map, out);
    const std::int64_t pixels = std::int64_t{out.width()} * out.height();
    DrawInBands(out.height(), pixels, [&](std::int32_t first, std::int32_t end) {
        for (std::int32_t y = first; y < end; ++y) {
            source.has_alpha ? warp.DrawRow<true>(y) : warp.DrawRow<false>(y);
        }
    });
}

} // namespace qt
