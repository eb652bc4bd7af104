#pragma once

#include <cstdint>

namespace qt {

/// Well-mixed bits of a number, the same on every machine: for patterns that a seed repeats and that any
/// thread may begin anywhere.
constexpr std::uint32_t MixBits(std::uint32_t bits) {
    bits = (bits ^ bits >> 16) * 0x7FEB'352D;
    bits = (bits ^ bits >> 15) * 0x846C'A68B;
    return bits ^ bits >> 16;
}

/// A number from 0 up to 1 for the `index`-th of a series.
constexpr float RandomShare(std::uint32_t series, std::uint32_t index) {
    return static_cast<float>(MixBits(MixBits(series) + index) >> 8) / 16'777'216;
}

} // namespace qt
