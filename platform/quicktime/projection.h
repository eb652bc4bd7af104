// Projective mappings of the plane in double precision.
#pragma once

#include <array>
#include <cstddef>

namespace qt {

struct Point {
    double x;
    double y;
};

/// Takes the row vector (x, y, 1) to (x', y', q), the point (x'/q, y'/q). Multiples are the same mapping.
struct Projection {
    std::array<std::array<double, 3>, 3> rows;

    /// One of the three coordinates of where a point goes, before the division.
    [[nodiscard]] double At(std::size_t coordinate, double x, double y) const {
        return x * rows[0][coordinate] + y * rows[1][coordinate] + rows[2][coordinate];
    }
    [[nodiscard]] Point Map(double x, double y) const {
        const double q = At(2, x, y);
        return {At(0, x, y) / q, At(1, x, y) / q};
    }
};

/// x·scale_x + left and y·scale_y + top.
Projection ScaleAndMove(double scale_x, double scale_y, double left, double top);
/// The first, then the second.
Projection Product(const Projection& first, const Projection& second);
/// The inverse, but for a factor that may be negative; without meaning for a mapping that has none.
Projection Inverse(const Projection& map);
double Determinant(const Projection& map);

} // namespace qt
