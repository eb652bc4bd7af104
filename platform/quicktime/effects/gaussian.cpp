// The image is filtered along its columns in strips of 16 pixels, which stay in the cache, and along its rows
// in the same way: 16 rows are turned into such a strip and back. So one pair of loops does both directions,
// with 64 channel values side by side for vector instructions, and no second image is needed.
#include "platform/quicktime/effects/gaussian.h"

#include "platform/quicktime/effects/pixel_math.h"
#include "platform/quicktime/effects/rows.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <vector>

namespace qt {
namespace {

constexpr std::int32_t kStrip = 16;                     ///< pixels side by side
constexpr std::size_t kLanes = std::size_t{4} * kStrip; ///< their channels

struct Line {
    std::array<std::uint8_t, kLanes> values;
};
using Lines = std::vector<Line>;

const Line& LineAt(const Lines& lines, std::ptrdiff_t index) {
    return lines[static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(index, 0, std::ssize(lines) - 1))];
}

/// The bell curve itself, for short ones: weights of the centre and of both neighbours at each distance. All
/// numbers stay in 16 bits, of which vectors hold most: channels in 1/128, products cut to their upper half.
class Curve {
public:
    explicit Curve(double sigma) {
        constexpr double kReach = 3.5; // in standard deviations; the weights beyond it are next to nothing
        constexpr double kOne = 65'535;
        double sum = -1;
        for (int distance = 0; distance <= sigma * kReach; ++distance) sum += 2 * Height(distance, sigma);
        for (int distance = 0; distance <= sigma * kReach; ++distance)
            weights_.push_back(static_cast<std::uint16_t>(std::lround(Height(distance, sigma) / sum * kOne)));
    }

    void Filter(const Lines& in, Lines& out) const {
        // Half a unit of the result, and of what each product loses.
        const auto half = static_cast<std::uint16_t>((kUnit + weights_.size()) / 2);
        for (std::ptrdiff_t y = 0; y < std::ssize(in); ++y) {
            Sums sums;
            const Line& centre = LineAt(in, y);
            for (std::size_t i = 0; i < kLanes; ++i)
                sums[i] = static_cast<std::uint16_t>(half + Weighted(centre.values[i], weights_[0]));
            for (std::size_t distance = 1; distance < weights_.size(); ++distance) {
                const auto apart = static_cast<std::ptrdiff_t>(distance);
                AddPair(LineAt(in, y - apart), LineAt(in, y + apart), weights_[distance], sums);
            }
            Line& blurred = out[static_cast<std::size_t>(y)];
            for (std::size_t i = 0; i < kLanes; ++i)
                blurred.values[i] = static_cast<std::uint8_t>(sums[i] / kUnit);
        }
    }

private:
    using Sums = std::array<std::uint16_t, kLanes>;

    static constexpr std::uint16_t kUnit = 128;

    /// A function of its own, or GCC swaps this loop with the one over the distances, for three times the
    /// time.
    [[gnu::noinline]] static void AddPair(const Line& before, const Line& behind, std::uint16_t weight,
                                          Sums& sums) {
        for (std::size_t i = 0; i < kLanes; ++i) {
            const auto pair = static_cast<std::uint16_t>(before.values[i] + behind.values[i]);
            sums[i] = static_cast<std::uint16_t>(sums[i] + Weighted(pair, weight));
        }
    }

    static double Height(int distance, double sigma) {
        return std::exp(-distance * distance / (2 * sigma * sigma));
    }

    static std::uint16_t Weighted(std::uint16_t values, std::uint16_t weight) {
        const auto units = static_cast<std::uint16_t>(values * kUnit);
        return static_cast<std::uint16_t>(std::uint32_t{units} * weight >> 16);
    }

    std::vector<std::uint16_t> weights_; ///< in 1/65536
};

/// Three running means, one over the other, in place of a long bell curve: their time does not grow with
/// their width. The three together are a sum of sums of sums of differences, taken modulo 2^32; as the true
/// result is below 2^31, none is lost.
class RunningMeans {
public:
    explicit RunningMeans(double sigma) : widths_(ChooseWidths(sigma)) {}

    void Filter(const Lines& in, Lines& out) const {
        const auto [first, second, third] = widths_;
        const std::ptrdiff_t reach = (first + second + third - 3) / 2;
        const auto product = static_cast<std::uint32_t>(first * second * third);
        const float mean = 1.0F / static_cast<float>(product);
        std::array<std::uint32_t, kLanes> once{};
        std::array<std::uint32_t, kLanes> twice{};
        std::array<std::uint32_t, kLanes> thrice;
        for (std::size_t i = 0; i < kLanes; ++i) thrice[i] = in[0].values[i] * product;
        for (std::ptrdiff_t y = 1; y < std::ssize(in) + reach; ++y) {
            const Line& l0 = LineAt(in, y);
            const Line& l1 = LineAt(in, y - first);
            const Line& l2 = LineAt(in, y - second);
            const Line& l3 = LineAt(in, y - third);
            const Line& l12 = LineAt(in, y - first - second);
            const Line& l13 = LineAt(in, y - first - third);
            const Line& l23 = LineAt(in, y - second - third);
            const Line& l123 = LineAt(in, y - first - second - third);
            for (std::size_t i = 0; i < kLanes; ++i) {
                const auto difference =
                    static_cast<std::int16_t>(l0.values[i] - l1.values[i] - l2.values[i] - l3.values[i] +
                                              l12.values[i] + l13.values[i] + l23.values[i] - l123.values[i]);
                once[i] += static_cast<std::uint32_t>(std::int32_t{difference});
                twice[i] += once[i];
                thrice[i] += twice[i];
            }
            if (y < reach) continue;
            Line& blurred = out[static_cast<std::size_t>(y - reach)];
            for (std::size_t i = 0; i < kLanes; ++i) {
                const auto sum = static_cast<float>(static_cast<std::int32_t>(thrice[i]));
                blurred.values[i] = static_cast<std::uint8_t>(Rounded(sum * mean));
            }
        }
    }

private:
    using Widths = std::array<std::ptrdiff_t, 3>;

    /// The widths, about equal, that together come closest to the curve; an odd number of them is odd, so
    /// that the middle is a pixel.
    static Widths ChooseWidths(double sigma) {
        constexpr std::ptrdiff_t kSpread = 3;
        constexpr std::ptrdiff_t kWidest = 203; // 255 · 203³ is below 2^31
        const auto middle = static_cast<std::ptrdiff_t>(std::lround(std::sqrt(4 * sigma * sigma + 1)));
        const std::ptrdiff_t least = std::max<std::ptrdiff_t>(middle - kSpread, 1);
        const std::ptrdiff_t most = std::min(middle + kSpread, kWidest);
        Widths best = {least, least, least};
        double best_distance = std::numeric_limits<double>::infinity();
        for (std::ptrdiff_t a = least; a <= most; ++a) {
            for (std::ptrdiff_t b = a; b <= most; ++b) {
                for (std::ptrdiff_t c = b + (a + 1) % 2; c <= most; c += 2) {
                    const double distance = Distance({a, b, c}, sigma);
                    if (distance >= best_distance) continue;
                    best_distance = distance;
                    best = {a, b, c};
                }
            }
        }
        return best;
    }

    /// Sum of the squared differences between the weights that the means give and those of the curve.
    static double Distance(const Widths& widths, double sigma) {
        std::vector<double> weights = {1};
        for (const std::ptrdiff_t width : widths) {
            std::vector<double> means(weights.size() + static_cast<std::size_t>(width) - 1);
            double sum = 0;
            for (std::size_t i = 0; i < means.size(); ++i) {
                if (i < weights.size()) sum += weights[i];
                if (i >= static_cast<std::size_t>(width)) sum -= weights[i - static_cast<std::size_t>(width)];
                means[i] = sum / static_cast<double>(width);
            }
            weights = std::move(means);
        }
        const double scale = 1 / (sigma * std::sqrt(2 * std::numbers::pi));
        const double middle = static_cast<double>(weights.size() - 1) / 2;
        double distance = 0;
        for (std::size_t i = 0; i < weights.size(); ++i) {
            const double from_middle = (static_cast<double>(i) - middle) / sigma;
            const double error = weights[i] - scale * std::exp(-from_middle * from_middle / 2);
            distance += error * error;
        }
        return distance;
    }

    Widths widths_;
};

void Load(const std::uint32_t* pixels, std::size_t count, bool premultiply, std::uint8_t* lane,
          std::size_t step) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t pixel = premultiply ? Premultiply(pixels[i]) : pixels[i];
        std::memcpy(lane + i * step, &pixel, sizeof(pixel));
    }
}

void Store(const std::uint8_t* lane, std::size_t step, std::size_t count, bool straight,
           std::uint32_t* pixels) {
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, lane + i * step, sizeof(pixel));
        pixels[i] = straight ? Unpremultiply(pixel) : pixel;
    }
}

constexpr std::int32_t Strips(std::int32_t pixels) {
    return (pixels + kStrip - 1) / kStrip;
}

template <class Kernel>
void BlurRows(const PixelImage& in, const Kernel& kernel, PixelImage& out) {
    const auto width = static_cast<std::size_t>(in.width());
    DrawInBands(Strips(in.height()), PixelCount(in), [&](std::int32_t first, std::int32_t last) {
        Lines lines(width);
        Lines blurred(width);
        for (std::int32_t y = first * kStrip; y < std::min(last * kStrip, in.height()); y += kStrip) {
            const std::int32_t rows = std::min(kStrip, in.height() - y);
            for (std::int32_t row = 0; row < rows; ++row)
                Load(in.Row(y + row), width, in.has_alpha,
                     &lines[0].values[static_cast<std::size_t>(row) * 4], sizeof(Line));
            kernel.Filter(lines, blurred);
            for (std::int32_t row = 0; row < rows; ++row)
                Store(&blurred[0].values[static_cast<std::size_t>(row) * 4], sizeof(Line), width, false,
                      out.Row(y + row));
        }
    });
}

template <class Kernel>
void BlurColumns(PixelImage& image, const Kernel& kernel) {
    DrawInBands(Strips(image.width()), PixelCount(image), [&](std::int32_t first, std::int32_t last) {
        Lines lines(static_cast<std::size_t>(image.height()));
        Lines blurred(lines.size());
        for (std::int32_t x = first * kStrip; x < std::min(last * kStrip, image.width()); x += kStrip) {
            const auto columns = static_cast<std::size_t>(std::min(kStrip, image.width() - x));
            for (std::size_t y = 0; y < lines.size(); ++y)
                Load(image.Row(static_cast<std::int32_t>(y)) + x, columns, false, lines[y].values.data(), 4);
            kernel.Filter(lines, blurred);
            for (std::size_t y = 0; y < lines.size(); ++y)
                Store(blurred[y].values.data(), 4, columns, image.has_alpha,
                      image.Row(static_cast<std::int32_t>(y)) + x);
        }
    });
}

template <class Kernel>
void Blur(const PixelImage& in, const Kernel& kernel, PixelImage& out) {
    BlurRows(in, kernel, out);
    out.has_alpha = in.has_alpha;
    BlurColumns(out, kernel);
}

} // namespace

void GaussianBlur(const PixelImage& in, double sigma, PixelImage& out) {
    constexpr double kSharpest = 0.2; // nothing of a narrower curve reaches a neighbour
    constexpr double kLongestCurve = 4;
    if (sigma < kSharpest) {
        for (std::int32_t y = 0; y < in.height(); ++y) std::copy_n(in.Row(y), in.width(), out.Row(y));
    } else if (sigma < kLongestCurve) {
        Blur(in, Curve(sigma), out);
    } else {
        Blur(in, RunningMeans(sigma), out);
    }
}

} // namespace qt
