// The curve that colours follow between pixels: cubic, through every pixel's own colour.
#pragma once

namespace qt {

inline constexpr double kCubicReach = 2.0; ///< pixels, to either side

/// A pixel's share at that distance from its centre, which is not negative.
template <class Number>
constexpr Number Cubic(Number distance) {
    const Number square = distance * distance;
    if (distance < Number{1}) return (Number{1.5} * distance - Number{2.5}) * square + Number{1};
    if (distance >= Number{2}) return Number{0};
    return ((Number{-0.5} * distance + Number{2.5}) * distance - Number{4}) * distance + Number{2};
}

} // namespace qt
