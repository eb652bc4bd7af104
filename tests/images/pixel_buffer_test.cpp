#include "images/pixel_buffer.h"

#include "images/streams.h"
#include "platform/fmwrapper/objects.h"
#include "platform/quicktime/image_codecs/codec.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <set>
#include <utility>

namespace corvane {
namespace {

using Points = std::set<std::pair<int, int>>;

PixelBufferHandle Create(std::uint32_t width, std::uint32_t height) {
    PixelBufferHandle buffer;
    EXPECT_EQ(CreatePixelBuffer(width, height, &buffer), 0);
    return buffer;
}

std::array<int, 4> PixelAt(IPixelBuffer& buffer, std::uint32_t x, std::uint32_t y) {
    const std::byte* address =
        buffer.GetBaseAddress() + std::size_t{y} * buffer.GetRowBytes() + std::size_t{4} * x;
    std::array<int, 4> bytes{};
    for (std::size_t i = 0; i < 4; ++i) bytes[i] = std::to_integer<int>(address[i]);
    return bytes;
}

/// All pixels that are not white.
Points Painted(IPixelBuffer& buffer) {
    Points points;
    for (std::uint32_t y = 0; y < buffer.GetHeight(); ++y) {
        for (std::uint32_t x = 0; x < buffer.GetWidth(); ++x) {
            if (PixelAt(buffer, x, y)[0] != 255) points.insert({static_cast<int>(x), static_cast<int>(y)});
        }
    }
    return points;
}

TEST(PixelBuffer, BeginsWhiteWithAlignedRows) {
    for (const auto& [width, height, row_bytes] :
         {std::array{3U, 2U, 16U}, {4U, 1U, 16U}, {5U, 1U, 32U}, {0U, 7U, 0U}}) {
        const PixelBufferHandle buffer = Create(width, height);
        EXPECT_EQ(buffer->GetRowBytes(), row_bytes);
        EXPECT_EQ(buffer->GetWidth(), width);
        EXPECT_EQ(buffer->GetHeight(), height);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(buffer->GetBaseAddress()) % 4096, 0U);
        for (std::uint32_t y = 0; y < height; ++y) {
            for (std::uint32_t x = 0; x < width; ++x) {
                EXPECT_EQ(PixelAt(*buffer, x, y), (std::array{255, 255, 255, 0}));
            }
        }
        std::array<std::uint8_t, 3> color = {9, 9, 9};
        buffer->GetColor(color[0], color[1], color[2]);
        EXPECT_EQ(color, (std::array<std::uint8_t, 3>{0, 0, 0}));
    }
}

TEST(PixelBuffer, RefusesWhatItCanNotHold) {
    EXPECT_EQ(CreatePixelBuffer(4, 4, nullptr), -50);
    PixelBufferHandle buffer;
    EXPECT_EQ(CreatePixelBuffer(30'001, 1, &buffer), -108);
    EXPECT_EQ(CreatePixelBuffer(1, 0xFFFFFFFFU, &buffer), -108);
    EXPECT_EQ(CreatePixelBuffer(30'000, 30'000, &buffer), -108);
    EXPECT_EQ(buffer, nullptr);
}

TEST(PixelBuffer, PaintsSinglePixelsInside) {
    const PixelBufferHandle buffer = Create(3, 2);
    buffer->SetColor(10, 20, 30);
    buffer->SetPixel(0, 0);
    EXPECT_EQ(PixelAt(*buffer, 0, 0), (std::array{10, 20, 30, 0}));
    buffer->SetPixel(2, 1);
    for (const auto& [x, y] : {std::pair{-1, 0}, {0, -1}, {3, 0}, {0, 2}, {INT32_MIN, 0}, {0, INT32_MAX}}) {
        buffer->SetPixel(x, y);
    }
    EXPECT_EQ(Painted(*buffer), (Points{{0, 0}, {2, 1}}));
}

TEST(PixelBuffer, FillsWholeRectanglesOnly) {
    const auto fill = [](std::array<int, 4> corners) {
        const PixelBufferHandle buffer = Create(9, 7);
        buffer->FillRect(corners[0], corners[1], corners[2], corners[3]);
        return Painted(*buffer);
    };
    const Points square = {{2, 2}, {3, 2}, {2, 3}, {3, 3}};
    EXPECT_EQ(fill({3, 3, 2, 2}), square);
    EXPECT_EQ(fill({2, 3, 3, 2}), square);
    EXPECT_EQ(fill({8, 6, 8, 6}), (Points{{8, 6}}));
    EXPECT_EQ(fill({0, 0, 8, 6}).size(), 63U);
    for (const auto& outside : {std::array{0, 0, 9, 0}, {0, 0, 0, 7}, {-1, 0, 3, 3}, {3, 3, 0, -1}})
        EXPECT_TRUE(fill(outside).empty());
}

/// Along the longer axis one pixel a step, on the other the nearest to the exact line, halves away from the
/// start.
Points ExactLine(int x0, int y0, int x1, int y1) {
    Points points;
    const int length = std::max(std::abs(x1 - x0), std::abs(y1 - y0));
    for (int i = 0; i <= length; ++i) {
        const auto along = [&](int from, int to) {
            return from +
                   static_cast<int>(std::round(i * static_cast<double>(to - from) / std::max(length, 1)));
        };
        points.insert({along(x0, x1), along(y0, y1)});
    }
    return points;
}

TEST(PixelBuffer, DrawsLinesInAllDirections) {
    constexpr int kSize = 25;
    constexpr int kMiddle = kSize / 2;
    for (int x = 0; x < kSize; ++x) {
        for (int y = 0; y < kSize; ++y) {
            const PixelBufferHandle buffer = Create(kSize, kSize);
            buffer->MoveTo(kMiddle, kMiddle);
            buffer->LineTo(x, y);
            ASSERT_EQ(Painted(*buffer), ExactLine(kMiddle, kMiddle, x, y)) << x << ", " << y;
        }
    }
}

TEST(PixelBuffer, LinesKeepThePenAndSkipTheOutside) {
    const PixelBufferHandle buffer = Create(5, 3);
    buffer->LineTo(4, 2);
    buffer->LineTo(0, 2);
    EXPECT_EQ(Painted(*buffer), (Points{{0, 0}, {1, 1}, {2, 1}, {3, 2}, {4, 2}, {0, 1}, {0, 2}}));

    const PixelBufferHandle other = Create(5, 3);
    other->MoveTo(-3, 1);
    other->LineTo(9, 1);
    EXPECT_EQ(Painted(*other), (Points{{0, 1}, {1, 1}, {2, 1}, {3, 1}, {4, 1}}));
}

TEST(PixelBuffer, BecomesAJpegImage) {
    const PixelBufferHandle buffer = Create(403, 100);
    buffer->SetColor(200, 30, 60);
    buffer->FillRect(300, 0, 402, 99);
    FM_Data result;
    EXPECT_EQ(EncodePixelBufferAsJPEG(result, nullptr), -50);
    EXPECT_EQ(EncodePixelBufferAsJPEG(result, Create(0, 5).get()), -50);
    EXPECT_NE(result.Type(), kFM_TypeContainer);
    ASSERT_EQ(EncodePixelBufferAsJPEG(result, buffer.get()), 0);
    const FM_BinaryData* container = Host(FM_Data_GetBinaryData, &result);
    EXPECT_EQ(Host(FM_BinaryData_GetCount, container), 2);
    const qt::MemoryHandle size = GetStreamData(container, FourCC("SIZE"));
    EXPECT_EQ(std::string_view(*size.get(), 4), std::string_view("\x01\x93\x00\x64", 4));
    const qt::MemoryHandle jpeg = GetStreamData(container, FourCC("JPEG"));
    qt::PixelImage image;
    ASSERT_EQ(qt::kJpegCodec.decode(*qt::MemorySource(qt::HandleBytes(jpeg.get())), 1, image), noErr);
    ASSERT_EQ(image.width(), 403);
    ASSERT_EQ(image.height(), 100);
    EXPECT_EQ(image.Row(50)[100], qt::Pixel(255, 255, 255));
    const std::uint32_t red = image.Row(50)[390];
    EXPECT_NEAR(static_cast<double>(qt::Red(red)), 200, 3);
    EXPECT_NEAR(static_cast<double>(qt::Green(red)), 30, 3);
    EXPECT_NEAR(static_cast<double>(qt::Blue(red)), 60, 3);
}

} // namespace
} // namespace corvane
