// Mappings of the plane as three by three matrices in fixed point.
//
// A point is a row vector: (x, y) goes to ((a·x + c·y + tx) / q, (b·x + d·y + ty) / q) with
// q = u·x + v·y + w. Coordinates grow to the right and downward. A matrix that would overflow its fields is
// stored with all of its elements divided by the same power of two, which is the same mapping.
#pragma once

#include "platform/quicktime/types.h"

/// Rows (a, b, u), (c, d, v) and (tx, ty, w). u, v and w are signed 2.30, the others 16.16.
struct MatrixRecord {
    std::array<std::array<Fixed, 3>, 3> matrix;

    bool operator==(const MatrixRecord&) const = default;
};

inline constexpr MatrixRecord kIdentityMatrix = {{{{1 << 16, 0, 0}, {0, 1 << 16, 0}, {0, 0, 1 << 30}}}};

struct FixedPoint {
    Fixed x;
    Fixed y;
};

/// The nearest fixed-point number; what is out of its range becomes the nearest that there is, NaN 0.
Fixed X2Fix(double value);

/// Each of these makes the mapping be followed by another, about the given point: a turn, clockwise for
/// positive degrees; x + skew_x·y and y + skew_y·x; multiples of x and y.
void RotateMatrix(MatrixRecord* matrix, Fixed degrees, Fixed about_x, Fixed about_y);
void SkewMatrix(MatrixRecord* matrix, Fixed skew_x, Fixed skew_y, Fixed about_x, Fixed about_y);
void ScaleMatrix(MatrixRecord* matrix, Fixed scale_x, Fixed scale_y, Fixed about_x, Fixed about_y);

/// `matrix` becomes itself followed by `next`. Each element is the exact one, rounded once.
void ConcatMatrix(const MatrixRecord* next, MatrixRecord* matrix);

/// The projective mapping that takes four corners of a quadrilateral to those of another, in the same order.
/// paramErr when three corners of either lie on a line; the matrix is not touched then.
OSErr QuadToQuadMatrix(const FixedPoint (&source)[4], const FixedPoint (&destination)[4],
                       MatrixRecord* matrix);
