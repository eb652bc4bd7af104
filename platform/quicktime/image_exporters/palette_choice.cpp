#include "platform/quicktime/image_exporters/palette_choice.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace qt {
namespace {

constexpr int kCellBits = 5;
constexpr int kSide = (1 << kCellBits) + 1; ///< cells each way, and an empty layer in front

/// Sums over the pixels of some colours.
struct Moments {
    double count = 0;
    std::array<double, 3> sums{}; ///< of red, green and blue
    double squares = 0;           ///< of the colours' lengths

    Moments& operator+=(const Moments& other) {
        count += other.count;
        for (std::size_t i = 0; i < sums.size(); ++i) sums[i] += other.sums[i];
        squares += other.squares;
        return *this;
    }
    Moments& operator-=(const Moments& other) {
        count -= other.count;
        for (std::size_t i = 0; i < sums.size(); ++i) sums[i] -= other.sums[i];
        squares -= other.squares;
        return *this;
    }

    /// Squared length of the sum, by pixel: the larger for two halves, the less variance is left in them.
    [[nodiscard]] double Concentration() const {
        return (sums[0] * sums[0] + sums[1] * sums[1] + sums[2] * sums[2]) / count;
    }
    [[nodiscard]] double Variance() const { return squares - Concentration(); }
};

/// Cells above `low` up to and including `high`, along red, green and blue.
struct Box {
    std::array<int, 3> low;
    std::array<int, 3> high;
    double variance = 0;
};

/// For every cell the moments of all cells at or below it along every axis.
class Cube {
public:
    explicit Cube(const PixelImage& image) : cells_(std::size_t{kSide} * kSide * kSide) {
        Count(image);
        Accumulate();
    }

    [[nodiscard]] Moments Of(const Box& box) const {
        Moments moments;
        for (unsigned corner = 0; corner < 8; ++corner) {
            std::array<int, 3> at{};
            int lows = 0;
            for (unsigned axis = 0; axis < 3; ++axis) {
                const bool low = (corner >> axis & 1) != 0;
                at[axis] = low ? box.low[axis] : box.high[axis];
                lows += low ? 1 : 0;
            }
            if (lows % 2 == 0) {
                moments += At(at[0], at[1], at[2]);
            } else {
                moments -= At(at[0], at[1], at[2]);
            }
        }
        return moments;
    }

private:
    struct Cell {
        std::uint32_t count = 0;
        std::array<std::uint64_t, 3> sums{};
    };

    [[nodiscard]] const Moments& At(int red, int green, int blue) const {
        const int cell = (red * kSide + green) * kSide + blue;
        return cells_[static_cast<std::size_t>(cell)];
    }

    // A cell is small: its pixels count as if all had their mean colour.
    void Count(const PixelImage& image) {
        constexpr std::uint32_t kMask = (1U << kCellBits) - 1;
        std::vector<Cell> counts(std::size_t{1} << (3 * kCellBits));
        for (std::int32_t y = 0; y < image.height(); ++y) {
            const std::uint32_t* row = image.Row(y);
            for (std::int32_t x = 0; x < image.width(); ++x) {
                const std::uint32_t pixel = row[x];
                if (Alpha(pixel) < 128) continue;
                Cell& cell =
                    counts[(pixel >> 9 & kMask << 10) | (pixel >> 6 & kMask << 5) | (pixel >> 3 & kMask)];
                ++cell.count;
                cell.sums[0] += Red(pixel);
                cell.sums[1] += Green(pixel);
                cell.sums[2] += Blue(pixel);
            }
        }
        for (std::size_t i = 0; i < counts.size(); ++i) {
            const Cell& cell = counts[i];
            if (cell.count == 0) continue;
            Moments& moments =
                cells_[(((i >> 10) + 1) * kSide + (i >> 5 & kMask) + 1) * kSide + (i & kMask) + 1];
            moments.count = cell.count;
            for (std::size_t axis = 0; axis < 3; ++axis) {
                moments.sums[axis] = static_cast<double>(cell.sums[axis]);
            }
            moments.squares = moments.Concentration();
        }
    }

    void Accumulate() {
        constexpr std::array<std::size_t, 3> kSteps = {std::size_t{kSide} * kSide, kSide, 1};
        for (const std::size_t step : kSteps) {
            for (std::size_t i = step; i < cells_.size(); ++i) {
                if (i / step % kSide != 0) cells_[i] += cells_[i - step];
            }
        }
    }

    std::vector<Moments> cells_;
};

/// Cuts a box in two where the halves vary least; false when all its pixels are in one cell.
bool Cut(const Cube& cube, Box& box, Box& upper) {
    const Moments whole = cube.Of(box);
    double best = 0;
    std::size_t best_axis = 0;
    int best_place = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        Box half = box;
        for (int place = box.low[axis] + 1; place < box.high[axis]; ++place) {
            half.high[axis] = place;
            const Moments lower = cube.Of(half);
            Moments rest = whole;
            rest -= lower;
            if (lower.count < 1 || rest.count < 1) continue;
            const double concentration = lower.Concentration() + rest.Concentration();
            if (concentration > best) {
                best = concentration;
                best_axis = axis;
                best_place = place;
            }
        }
    }
    if (best_place == 0) return false;
    upper = box;
    upper.low[best_axis] = best_place;
    box.high[best_axis] = best_place;
    box.variance = cube.Of(box).Variance();
    upper.variance = cube.Of(upper).Variance();
    return true;
}

std::uint32_t MeanColour(const Moments& moments) {
    const auto mean = [&](std::size_t axis) {
        return static_cast<std::uint32_t>(
            std::clamp(std::lround(moments.sums[axis] / moments.count), 0L, 255L));
    };
    return Pixel(mean(0), mean(1), mean(2));
}

} // namespace

std::vector<std::uint32_t> ChoosePalette(const PixelImage& image, std::size_t count) {
    const Cube cube(image);
    std::vector<Box> boxes = {{{0, 0, 0}, {kSide - 1, kSide - 1, kSide - 1}}};
    boxes.front().variance = cube.Of(boxes.front()).Variance();
    while (boxes.size() < count) {
        Box& widest = *std::ranges::max_element(boxes, {}, &Box::variance);
        if (!(widest.variance > 0)) break;
        Box upper{};
        if (Cut(cube, widest, upper)) {
            boxes.push_back(upper);
        } else {
            widest.variance = 0;
        }
    }
    std::vector<std::uint32_t> palette;
    for (const Box& box : boxes) {
        const Moments moments = cube.Of(box);
        if (moments.count > 0) palette.push_back(MeanColour(moments));
    }
    return palette;
}

} // namespace qt
