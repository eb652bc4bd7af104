#include "platform/quicktime/transform_resample.h"

#include "platform/quicktime/cubic.h"
#include "platform/quicktime/pixel_vectors.h"
#include "platform/quicktime/transform_bands.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

namespace qt {
namespace {

/// The pixels of a line that one new pixel is made of, and the share of each.
struct Taps {
    std::int32_t first;
    std::span<const float> shares;
};

/// The taps of all pixels of a stretch.
class TapTable {
public:
    TapTable(const Stretch& stretch, std::int32_t length)
        : pixels_(PixelsBetween(stretch.from, stretch.to, length)), end_(std::max(stretch.from, stretch.to)) {
        const auto count = static_cast<std::size_t>(stretch.pixels);
        firsts_.reserve(count);
        ends_.reserve(count);
        const double step = (stretch.to - stretch.from) / stretch.pixels;
        for (std::int32_t i = 0; i < stretch.pixels; ++i) {
            Add(stretch.from + (i + 0.5) * step, std::max(std::abs(step), 1.0));
        }
    }

    [[nodiscard]] Taps At(std::int32_t pixel) const {
        const auto index = static_cast<std::size_t>(pixel);
        const std::size_t begin = index == 0 ? 0 : ends_[index - 1];
        return {firsts_[index], std::span(shares_).subspan(begin, ends_[index] - begin)};
    }
    /// The pixels of the line that are used at all.
    [[nodiscard]] const PixelSpan& Pixels() const { return pixels_; }

private:
    void Add(double centre, double scale) {
        const double reach = kCubicReach * scale;
        const auto first =
            std::max(static_cast<std::int32_t>(std::ceil(centre - reach - 0.5)), pixels_.begin);
        const auto end =
            std::min(static_cast<std::int32_t>(std::floor(centre + reach - 0.5)) + 1, pixels_.end);
        const std::size_t begin = shares_.size();
        double sum = 0.0;
        firsts_.push_back(first);
        for (std::int32_t i = first; i < end; ++i) {
            const double right = std::min(i + 1.0, end_); // of the last one a part may be the image's
            const double share = Cubic(std::abs((i + right) / 2.0 - centre) / scale) * (right - i);
            sum += share;
            shares_.push_back(static_cast<float>(share));
        }
        for (float& share : std::span(shares_).subspan(begin)) share = static_cast<float>(share / sum);
        ends_.push_back(shares_.size());
    }

    PixelSpan pixels_;
    double end_; ///< of what is shown
    std::vector<std::int32_t> firsts_;
    std::vector<std::size_t> ends_; ///< of each pixel's shares
    std::vector<float> shares_;
};

/// Adds a share of a row without alpha to sums of its samples.
void AddRow(const std::uint32_t* row, std::span<float> sums, float share) {
    const auto* samples = reinterpret_cast<const std::uint8_t*>(row);
    for (std::size_t i = 0; i < sums.size(); ++i) sums[i] += share * static_cast<float>(samples[i]);
}

void AddTransparentRow(const std::uint32_t* row, std::span<float> sums, float share) {
    for (std::size_t i = 0; i < sums.size() / 4; ++i) {
        StoreFloats(LoadFloats(&sums[4 * i]) + share * LoadTransparentPixel(row[i]), &sums[4 * i]);
    }
}

/// Sums of rows of the source, four a pixel.
void SumRows(const PixelImage& source, const Taps& rows, std::int32_t left, std::span<float> sums) {
    std::ranges::fill(sums, 0.0F);
    const auto add = source.has_alpha ? AddTransparentRow : AddRow;
    for (std::size_t i = 0; i < rows.shares.size(); ++i) {
        add(source.Row(rows.first + static_cast<std::int32_t>(i)) + left, sums, rows.shares[i]);
    }
}

Float4 Sum(const float* pixels, std::span<const float> shares) {
    Float4 sum = {};
    for (std::size_t i = 0; i < shares.size(); ++i) sum += shares[i] * LoadFloats(pixels + 4 * i);
    return sum;
}

/// One pixel becomes one.
bool IsCopy(const Stretch& stretch) {
    return std::abs(stretch.to - stretch.from) == stretch.pixels && stretch.from == std::floor(stretch.from);
}

void Copy(const PixelImage& source, const Stretch& across, const Stretch& down, PixelImage& out) {
    const bool mirrored = across.from > across.to;
    const bool upside_down = down.from > down.to;
    const auto left = static_cast<std::int32_t>(std::min(across.from, across.to));
    for (std::int32_t y = 0; y < down.pixels; ++y) {
        const auto row = static_cast<std::int32_t>(down.from) + (upside_down ? -1 - y : y);
        const std::uint32_t* pixels = source.Row(row) + left;
        std::uint32_t* place = out.Row(down.first + y) + across.first;
        if (mirrored) {
            std::reverse_copy(pixels, pixels + across.pixels, place);
        } else {
            std::copy_n(pixels, across.pixels, place);
        }
    }
}

} // namespace

PixelSpan PixelsBetween(double from, double to, std::int32_t length) {
    const auto [low, high] = std::minmax(from, to);
    const auto end = static_cast<std::int32_t>(std::ceil(high));
    return {static_cast<std::int32_t>(std::ceil(low)),
            end == length ? end : static_cast<std::int32_t>(std::floor(high))};
}

void Resample(const PixelImage& source, const Stretch& across, const Stretch& down, PixelImage& out) {
    if (IsCopy(across) && IsCopy(down)) {
        Copy(source, across, down, out);
        return;
    }
    const TapTable columns(across, source.width());
    const TapTable rows(down, source.height());
    const std::int32_t left = columns.Pixels().begin;
    const auto width = static_cast<std::size_t>(columns.Pixels().end - left);
    const std::int64_t height = rows.Pixels().end - rows.Pixels().begin;
    DrawInBands(down.pixels, height * static_cast<std::int64_t>(width),
                [&](std::int32_t first, std::int32_t end) {
                    std::vector<float> sums(4 * width);
                    for (std::int32_t y = first; y < end; ++y) {
                        SumRows(source, rows.At(y), left, sums);
                        std::uint32_t* row = out.Row(down.first + y) + across.first;
                        for (std::int32_t x = 0; x < across.pixels; ++x) {
                            const Taps taps = columns.At(x);
                            const Float4 sum =
                                Sum(&sums[4 * static_cast<std::size_t>(taps.first - left)], taps.shares);
                            row[x] = source.has_alpha ? TransparentPixel(sum) : OpaquePixel(sum);
                        }
                    }
                });
}

ComponentResult Transpose(const PixelImage& image, PixelImage& out) {
    constexpr std::int32_t kTile = 16; ///< pixels: a cache line of either image
    if (const auto code = out.Allocate(image.height(), image.width()); code != noErr) return code;
    for (std::int32_t top = 0; top < image.height(); top += kTile) {
        const std::int32_t bottom = std::min(top + kTile, image.height());
        for (std::int32_t x = 0; x < image.width(); ++x) {
            std::uint32_t* column = out.Row(x);
            for (std::int32_t y = top; y < bottom; ++y) column[y] = image.Row(y)[x];
        }
    }
    out.has_alpha = image.has_alpha;
    out.is_grey = image.is_grey;
    return noErr;
}

} // namespace qt
