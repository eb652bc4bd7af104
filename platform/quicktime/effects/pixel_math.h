// Arithmetic on 8-bit channels that several effects share.
#pragma once

#include "platform/quicktime/pixel_image.h"

#include <algorithm>
#include <cmath>

namespace qt {

/// Rounded n / 255 for products of two 8-bit values.
constexpr std::uint32_t Divide255(std::uint32_t n) {
    return (n + 128 + ((n + 128) >> 8)) >> 8;
}

/// Rounded; never negative, and below 2^31. By a signed number, for which there are vector instructions.
constexpr std::uint32_t Rounded(float value) {
    constexpr float kHalf = 0.5F;
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(value + kHalf));
}

/// Rounded, and held between 0 and 255.
constexpr std::uint32_t ToByte(float value) {
    return Rounded(std::clamp(value, 0.0F, 255.0F));
}
constexpr std::uint32_t ToByte(std::int32_t value) {
    return static_cast<std::uint32_t>(std::clamp(value, 0, 255));
}

/// Brightness as the eye sees it, 0 to 255.
constexpr std::uint32_t Luma(std::uint32_t pixel) {
    return (77 * Red(pixel) + 150 * Green(pixel) + 29 * Blue(pixel) + 128) >> 8;
}

/// The colours multiplied by alpha, which several images can be added in.
constexpr std::uint32_t Premultiply(std::uint32_t pixel) {
    const std::uint32_t alpha = Alpha(pixel);
    return Pixel(Divide255(Red(pixel) * alpha), Divide255(Green(pixel) * alpha),
                 Divide255(Blue(pixel) * alpha), alpha);
}

constexpr std::uint32_t Unpremultiply(std::uint32_t pixel) {
    const std::uint32_t alpha = Alpha(pixel);
    if (alpha == 0 || alpha == 255) return pixel;
    const auto straight = [alpha](std::uint32_t value) {
        return std::min<std::uint32_t>((value * 255 + alpha / 2) / alpha, 255);
    };
    return Pixel(straight(Red(pixel)), straight(Green(pixel)), straight(Blue(pixel)), alpha);
}

/// From `a` (weight 0) to `b` (weight 255), channel by channel: for pixels of the same alpha.
constexpr std::uint32_t MixChannels(std::uint32_t a, std::uint32_t b, std::uint32_t weight) {
    const std::uint32_t rest = 255 - weight;
    const auto mixed = [=](std::uint32_t from, std::uint32_t to) {
        return Divide255(from * rest + to * weight);
    };
    return Pixel(mixed(Red(a), Red(b)), mixed(Green(a), Green(b)), mixed(Blue(a), Blue(b)),
                 mixed(Alpha(a), Alpha(b)));
}

/// Two straight pixels laid over each other, of which so much is seen: weights from 0 to 255.
inline std::uint32_t Blend(std::uint32_t a, std::uint32_t weight_a, std::uint32_t b, std::uint32_t weight_b) {
    const std::uint32_t share_a = Alpha(a) * weight_a;
    const std::uint32_t share_b = Alpha(b) * weight_b;
    if (share_a + share_b == 0) return 0x00FF'FFFF;
    const float inverse = 1 / static_cast<float>(share_a + share_b);
    const auto channel = [=](std::uint32_t from_a, std::uint32_t from_b) {
        return Rounded(static_cast<float>(from_a * share_a + from_b * share_b) * inverse);
    };
    return Pixel(channel(Red(a), Red(b)), channel(Green(a), Green(b)), channel(Blue(a), Blue(b)),
                 std::min<std::uint32_t>(Divide255(share_a + share_b), 255));
}

/// From `a` (weight 0) to `b` (weight 255): straight pixels.
inline std::uint32_t Mix(std::uint32_t a, std::uint32_t b, std::uint32_t weight) {
    return (a & b) >= 0xFF00'0000 ? MixChannels(a, b, weight) : Blend(a, 255 - weight, b, weight);
}

} // namespace qt
