#include "platform/quicktime/matrices.h"

#include "platform/quicktime/projection.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <numbers>
#include <optional>

namespace {

__extension__ using Wide = __int128; ///< sums of products of elements, without loss

constexpr Fixed kOne = 1 << 16;         ///< of 16.16
constexpr Fixed kOneFraction = 1 << 30; ///< of 2.30
constexpr int kFractionShift = 14;      ///< from 16.16 to 2.30

using WideMatrix = std::array<std::array<Wide, 3>, 3>;

Wide Rounded(Wide value, int shift) {
    return (value + (Wide{1} << (shift - 1))) >> shift;
}

bool Fits(const WideMatrix& elements, int shift) {
    for (const auto& row : elements) {
        for (const Wide element : row) {
            const Wide rounded = Rounded(element, shift);
            if (rounded != static_cast<Fixed>(rounded)) return false;
        }
    }
    return true;
}

/// Takes elements that have so many more binary places than the fields.
void Store(const WideMatrix& elements, int shift, MatrixRecord& matrix) {
    while (!Fits(elements, shift)) ++shift;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            matrix.matrix[row][column] = static_cast<Fixed>(Rounded(elements[row][column], shift));
        }
    }
}

/// Follows with a mapping whose point (0, 0) is moved to the given one.
void ConcatAbout(MatrixRecord next, Fixed x, Fixed y, MatrixRecord* matrix) {
    if (x != 0 || y != 0) {
        constexpr Fixed kLargest = std::numeric_limits<Fixed>::max(); // the least number has no opposite
        const auto negative = [](Fixed value) { return -std::max(value, -kLargest); };
        MatrixRecord away = kIdentityMatrix;
        away.matrix[2] = {negative(x), negative(y), kOneFraction};
        MatrixRecord back = kIdentityMatrix;
        back.matrix[2] = {x, y, kOneFraction};
        ConcatMatrix(&away, matrix);
        ConcatMatrix(&next, matrix);
        ConcatMatrix(&back, matrix);
    } else {
        ConcatMatrix(&next, matrix);
    }
}

/// The mapping that takes the corners of the unit square to the quadrilateral's. Nothing when three of those
/// lie on a line.
std::optional<qt::Projection> FromSquare(const FixedPoint (&quad)[4]) {
    const auto x = [&](int i) { return quad[i].x / double{kOne}; };
    const auto y = [&](int i) { return quad[i].y / double{kOne}; };
    for (int i = 0; i < 4; ++i) {
        const int left = (i + 3) % 4;
        const int right = (i + 1) % 4;
        if ((x(left) - x(i)) * (y(right) - y(i)) == (y(left) - y(i)) * (x(right) - x(i))) return std::nullopt;
    }
    const double sum_x = x(0) - x(1) + x(2) - x(3);
    const double sum_y = y(0) - y(1) + y(2) - y(3);
    const double dx1 = x(1) - x(2);
    const double dx2 = x(3) - x(2);
    const double dy1 = y(1) - y(2);
    const double dy2 = y(3) - y(2);
    const double area = dx1 * dy2 - dx2 * dy1;
    const double u = (sum_x * dy2 - dx2 * sum_y) / area;
    const double v = (dx1 * sum_y - sum_x * dy1) / area;
    return qt::Projection{{{{x(1) - x(0) + u * x(1), y(1) - y(0) + u * y(1), u},
                            {x(3) - x(0) + v * x(3), y(3) - y(0) + v * y(3), v},
                            {x(0), y(0), 1.0}}}};
}

} // namespace

Fixed X2Fix(double value) {
    if (std::isnan(value)) return 0;
    const double units = std::round(value * kOne);
    return static_cast<Fixed>(std::clamp(units, double{std::numeric_limits<Fixed>::min()},
                                         double{std::numeric_limits<Fixed>::max()}));
}

void RotateMatrix(MatrixRecord* matrix, Fixed degrees, Fixed about_x, Fixed about_y) {
    const double radians = degrees / double{kOne} * std::numbers::pi / 180.0;
    const Fixed cosine = X2Fix(std::cos(radians));
    const Fixed sine = X2Fix(std::sin(radians));
    ConcatAbout({{{{cosine, sine, 0}, {-sine, cosine, 0}, {0, 0, kOneFraction}}}}, about_x, about_y, matrix);
}

void SkewMatrix(MatrixRecord* matrix, Fixed skew_x, Fixed skew_y, Fixed about_x, Fixed about_y) {
    ConcatAbout({{{{kOne, skew_y, 0}, {skew_x, kOne, 0}, {0, 0, kOneFraction}}}}, about_x, about_y, matrix);
}

void ScaleMatrix(MatrixRecord* matrix, Fixed scale_x, Fixed scale_y, Fixed about_x, Fixed about_y) {
    ConcatAbout({{{{scale_x, 0, 0}, {0, scale_y, 0}, {0, 0, kOneFraction}}}}, about_x, about_y, matrix);
}

void ConcatMatrix(const MatrixRecord* next, MatrixRecord* matrix) {
    constexpr int kPlaces = 30; ///< that an exact element has more than its field
    WideMatrix product{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            Wide& element = product[row][column];
            for (std::size_t k = 0; k < 3; ++k) {
                // Factors of 16.16 by 16.16, or 16.16 by 2.30 for the last column's, lack the places that the
                // others have, whose one factor is a 2.30 more.
                const Wide term = Wide{matrix->matrix[row][k]} * next->matrix[k][column];
                element += k < 2 ? term * (1 << kFractionShift) : term;
            }
        }
    }
    Store(product, kPlaces, *matrix);
}

OSErr QuadToQuadMatrix(const FixedPoint (&source)[4], const FixedPoint (&destination)[4],
                       MatrixRecord* matrix) {
    const auto from_source = FromSquare(source);
    const auto to_destination = FromSquare(destination);
    if (!from_source || !to_destination) return paramErr;
    const auto map = qt::Product(qt::Inverse(*from_source), *to_destination).rows;
    double largest = 0.0;
    for (const auto& row : map) {
        for (const double element : row) largest = std::max(largest, std::abs(element));
    }
    if (std::abs(map[2][2]) <= largest * 1e-12) return paramErr;
    constexpr int kPlaces = 30; // more than the fields have
    WideMatrix elements;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            const int places = kPlaces + (column < 2 ? 16 : 30);
            elements[row][column] = static_cast<Wide>(std::ldexp(map[row][column] / map[2][2], places));
        }
    }
    Store(elements, kPlaces, *matrix);
    return noErr;
}
