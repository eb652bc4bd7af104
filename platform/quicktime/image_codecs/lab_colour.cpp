#include "platform/quicktime/image_codecs/lab_colour.h"

#include "platform/quicktime/pixel_image.h"

#include <algorithm>
#include <cmath>

namespace qt {
namespace {

using Vector = std::array<double, 3>;
using Matrix = std::array<Vector, 3>;

constexpr std::size_t kSteps = 4'096;
constexpr Matrix kBradford = {
    {{0.8951, 0.2664, -0.1614}, {-0.7502, 1.7135, 0.0367}, {0.0389, -0.0685, 1.0296}}};
constexpr Matrix kFromBradford = {{{0.9869929, -0.1470543, 0.1599627},
                                   {0.4323053, 0.5183603, 0.0492912},
                                   {-0.0085287, 0.0400428, 0.9684867}}};
constexpr Matrix kSrgbFromXyz = {{{3.2404542, -1.5371385, -0.4985314},
                                  {-0.9692660, 1.8760108, 0.0415560},
                                  {0.0556434, -0.2040259, 1.0572252}}};

Vector Product(const Matrix& matrix, const Vector& vector) {
    Vector product{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) product[i] += matrix[i][j] * vector[j];
    }
    return product;
}

/// X, Y and Z of a white whose Y is 1.
Vector WhiteAt(double x, double y) {
    return {x / y, 1.0, (1.0 - x - y) / y};
}

float Companded(double linear) {
    const double value = linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1.0 / 2.4) - 0.055;
    return static_cast<float>(value * 255.0);
}

/// Values of 0 to 255 for steps of linear light, and one behind them.
const std::array<float, kSteps + 2>& CompandedSteps() {
    static const auto kTable = [] {
        std::array<float, kSteps + 2> table{};
        for (std::size_t step = 0; step < table.size(); ++step)
            table[step] = Companded(static_cast<double>(step) / kSteps);
        return table;
    }();
    return kTable;
}

double Unfolded(double f) {
    return f > 6.0 / 29.0 ? f * f * f : (f - 16.0 / 116.0) * 108.0 / 841.0;
}

} // namespace

LabColours::LabColours(double x, double y) {
    const bool is_light = x > 0.1 && y > 0.1 && x + y < 0.9;
    const Vector white = is_light ? WhiteAt(x, y) : WhiteAt(0.34567, 0.35850);
    const Vector given = Product(kBradford, white);
    const Vector shown = Product(kBradford, WhiteAt(0.3127, 0.3290));
    for (std::size_t column = 0; column < 3; ++column) {
        Vector part{};
        part[column] = white[column];
        Vector cones = Product(kBradford, part);
        for (std::size_t cone = 0; cone < 3; ++cone) cones[cone] *= shown[cone] / given[cone];
        const Vector linear = Product(kSrgbFromXyz, Product(kFromBradford, cones));
        for (std::size_t row = 0; row < 3; ++row) linear_from_xyz_[row][column] = linear[row];
    }
}

std::uint32_t LabColours::PixelOf(std::uint32_t l, std::uint32_t a, std::uint32_t b) const {
    const double fy = (l * 100.0 / 255.0 + 16.0) / 116.0;
    const Vector xyz = {Unfolded(fy + (static_cast<double>(a) - 128.0) / 500.0), Unfolded(fy),
                        Unfolded(fy - (static_cast<double>(b) - 128.0) / 200.0)};
    const auto& companded = CompandedSteps();
    const auto byte = [&](const Vector& row) {
        const double linear = row[0] * xyz[0] + row[1] * xyz[1] + row[2] * xyz[2];
        const auto place = static_cast<float>(std::clamp(linear, 0.0, 1.0) * kSteps);
        const auto step = static_cast<std::size_t>(place);
        const float below = companded[step];
        const float value = below + (companded[step + 1] - below) * (place - static_cast<float>(step));
        return static_cast<std::uint32_t>(std::lround(value));
    };
    return Pixel(byte(linear_from_xyz_[0]), byte(linear_from_xyz_[1]), byte(linear_from_xyz_[2]));
}

} // namespace qt
