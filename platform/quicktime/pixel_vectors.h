// Pixels as vectors of four numbers: blue, green, red, alpha. Colours are multiplied by their alpha (0 to
// 255, as they are) so that what is transparent has no colour to lend to its neighbours.
#pragma once

#include "platform/quicktime/pixel_image.h"

#include <bit>
#include <cstring>

namespace qt {

using Float4 [[gnu::vector_size(16)]] = float;
using Int4 [[gnu::vector_size(16)]] = std::int32_t;

inline Float4 LoadFloats(const float* four) {
    Float4 numbers;
    std::memcpy(&numbers, four, sizeof numbers);
    return numbers;
}
inline void StoreFloats(Float4 numbers, float* four) {
    std::memcpy(four, &numbers, sizeof numbers);
}

/// Widens the bytes in steps that processors have: a conversion of four bytes would be done one by one.
inline Float4 LoadPixel(std::uint32_t pixel) {
    using Bytes [[gnu::vector_size(16)]] = std::uint8_t;
    using Shorts [[gnu::vector_size(16)]] = std::uint16_t;
    const Int4 word = {static_cast<std::int32_t>(pixel), 0, 0, 0};
    const Bytes bytes = __builtin_shufflevector(std::bit_cast<Bytes>(word), Bytes{}, 0, 16, 1, 17, 2, 18, 3,
                                                19, 4, 20, 5, 21, 6, 22, 7, 23);
    const Shorts shorts =
        __builtin_shufflevector(std::bit_cast<Shorts>(bytes), Shorts{}, 0, 8, 1, 9, 2, 10, 3, 11);
    return __builtin_convertvector(std::bit_cast<Int4>(shorts), Float4);
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
