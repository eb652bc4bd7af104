// Images made of colours, and their pixels one by one.
#pragma once

#include "platform/quicktime/pixel_image.h"

#include <gtest/gtest.h>

#include <vector>

namespace corvane::test {

using Pixels = std::vector<std::uint32_t>;

/// Calls look(x, y, pixel), row by row.
template <class Look>
void ForEachPixel(const qt::PixelImage& image, Look look) {
    for (std::int32_t y = 0; y < image.height(); ++y) {
        for (std::int32_t x = 0; x < image.width(); ++x) look(x, y, image.Row(y)[x]);
    }
}

inline Pixels PixelsOf(const qt::PixelImage& image) {
    Pixels pixels;
    ForEachPixel(image, [&](int, int, std::uint32_t pixel) { pixels.push_back(pixel); });
    return pixels;
}

/// An image whose pixels are colour(x, y).
template <class Colour>
qt::PixelImage MakeImage(std::int32_t width, std::int32_t height, Colour colour) {
    qt::PixelImage image;
    EXPECT_EQ(image.Allocate(width, height), noErr);
    ForEachPixel(image, [&](int x, int y, std::uint32_t) {
        image.Row(y)[x] = colour(x, y);
        image.has_alpha |= qt::Alpha(image.Row(y)[x]) < 255;
    });
    return image;
}

inline qt::PixelImage MakeImage(std::int32_t width, std::int32_t height, std::uint32_t colour) {
    return MakeImage(width, height, [=](int, int) { return colour; });
}

} // namespace corvane::test
