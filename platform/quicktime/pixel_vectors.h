// Pixels as vectors of four numbers: blue, green, red, alpha. Colours are multiplied by their alpha (0 to
// 255, as they are) so that what is transparent has no colour to lend to its neighbours.
#pragma once

#include "platform/quicktime/pixel_image.h"

#include <cstring>

namespace qt {

using Float4 [[gnu::vector_size(16)]] = float;

inline Float4 LoadFloats(const float* four) {
    Float4 numbers;
    std::memcpy(&numbers, four, sizeof numbers);
    return numbers;
}
inline void StoreFloats(Float4 numbers, float* four) {
    std::memcpy(four, &numbers, sizeof numbers);
}

inline Float4 LoadPixel(std::uint32_t pixel) {
    using Bytes4 [[gnu::vector_size(4)]] = std::uint8_t;
    Bytes4 bytes;
    std::memcpy(&bytes, &pixel, sizeof bytes);
    return __builtin_convertvector(bytes, Float4);
}

/// Of an image with alpha.
inline Float4 LoadTransparentPixel(std::uint32_t pixel) {
    const Float4 numbers = LoadPixel(pixel);
    const float alpha = numbers[3];
    const float share = alpha / 255.0F;
    return Float4{numbers[0] * share, numbers[1] * share, numbers[2] * share, alpha};
}

/// Rounds four numbers to a pixel's; what is beyond 0 or 255 is held there.
inline std::uint32_t RoundedPixel(Float4 numbers) {
    using Int4 [[gnu::vector_size(16)]] = std::int32_t;
    const Float4 low = {};
    const Float4 high = {255.0F, 255.0F, 255.0F, 255.0F};
    numbers = numbers > low ? numbers : low;
    numbers = numbers < high ? numbers : high;
    const Int4 whole = __builtin_convertvector(numbers + 0.5F, Int4);
    return static_cast<std::uint32_t>(whole[0] | whole[1] << 8 | whole[2] << 16 | whole[3] << 24);
}

/// A pixel of an image without alpha.
inline std::uint32_t OpaquePixel(Float4 numbers) {
    return RoundedPixel(numbers) | 0xFF00'0000;
}

/// White where nothing is seen.
inline std::uint32_t TransparentPixel(Float4 numbers) {
    constexpr std::uint32_t kClear = Pixel(255, 255, 255, 0);
    const float alpha = numbers[3];
    if (alpha < 0.5F) return kClear;
    const float factor = 255.0F / alpha;
    const Float4 straight = {numbers[0] * factor, numbers[1] * factor, numbers[2] * factor, alpha};
    return RoundedPixel(straight);
}

} // namespace qt
