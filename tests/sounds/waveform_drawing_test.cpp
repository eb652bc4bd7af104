#include "sounds/waveform_drawing.h"

#include "sounds/sample_format.h"
#include "tests/sounds/samples.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <string>

namespace corvane {
namespace {

using Picture = std::vector<std::string>; ///< a letter for each pixel: margin, background, foreground

WaveformRequest Request(std::int32_t width, std::int32_t height, std::int32_t channel = kAllChannels) {
    return {width, height, channel, {1, 2, 3}, {200, 100, 50}};
}

/// Feeds blocks of growing length, so that blocks end at any place in a column.
PixelBufferHandle Draw(const WaveformRequest& request, OSType format, std::uint32_t channels,
                       const std::vector<int>& samples) {
    const std::vector<std::byte> bytes = SamplesToBytes(samples, *SixteenBitOrder(format));
    WaveformDrawing drawing;
    EXPECT_EQ(drawing.Begin(request, {format, channels, samples.size() / channels}), 0);
    std::span<const std::byte> rest(bytes);
    for (std::size_t frames = 1; !rest.empty(); ++frames) {
        const auto block = rest.first(std::min(rest.size(), frames * channels * 2));
        drawing.AddFrames(block);
        rest = rest.subspan(block.size());
    }
    return drawing.TakePicture();
}

unsigned long Checksum(IPixelBuffer& picture) {
    unsigned long checksum = 0;
    for (std::uint32_t y = 0; y < picture.GetHeight(); ++y) {
        const auto* row =
            reinterpret_cast<const Bytef*>(picture.GetBaseAddress() + y * picture.GetRowBytes());
        checksum = crc32(checksum, row, picture.GetWidth() * 4);
    }
    return checksum;
}

Picture Letters(IPixelBuffer& picture) {
    Picture rows(picture.GetHeight());
    for (std::uint32_t y = 0; y < picture.GetHeight(); ++y) {
        for (std::uint32_t x = 0; x < picture.GetWidth(); ++x) {
            switch (std::to_integer<int>(picture.GetBaseAddress()[y * picture.GetRowBytes() + 4 * x])) {
            case 255: rows[y] += '.'; break;
            case 200: rows[y] += 'b'; break;
            case 1: rows[y] += 'F'; break;
            default: rows[y] += '?';
            }
        }
    }
    return rows;
}

std::vector<int> PseudoRandom(std::size_t count) {
    std::uint32_t state = 12345;
    std::vector<int> samples;
    while (samples.size() < count) {
        state = state * 1664525U + 1013904223U;
        samples.push_back(static_cast<std::int16_t>(state >> 16));
    }
    return samples;
}

TEST(WaveformDrawing, EqualsTheReferenceToThePixel) {
    const struct {
        std::int32_t width;
        std::int32_t height;
        std::uint32_t channels;
        std::int32_t first;
        std::uint32_t count;
        std::uint32_t frames;
        unsigned long checksum;
    } cases[] = {
        // Printed by waveform_reference.py
        {400, 220, 2, 0, 2, 40000, 0xCFC31833U}, {400, 120, 2, 1, 1, 1001, 0xCC0B6D5EU},
        {97, 333, 3, 0, 3, 195, 0x745D22CDU},    {97, 333, 1, 0, 1, 193, 0x3A1779B3U},
        {400, 100, 1, 0, 1, 100, 0xC235210BU},   {50, 60, 2, 0, 2, 1, 0xE97F0A1FU},
        {61, 40, 1, 0, 1, 5000, 0xE36DDD92U},    {7, 100, 2, 0, 1, 14, 0xFB1BB230U},
    };
    for (const auto& [width, height, channels, first, count, frames, checksum] : cases) {
        const std::vector<int> samples = PseudoRandom(std::size_t{channels} * frames);
        const WaveformRequest request = Request(width, height, count == channels ? kAllChannels : first);
        for (const OSType format : {kSowtFormat, kTwosFormat}) {
            EXPECT_EQ(Checksum(*Draw(request, format, channels, samples)), checksum)
                << width << " × " << height;
        }
    }
}

TEST(WaveformDrawing, LaysOutMarginBandsAndGaps) {
    const Picture rows = Letters(*Draw(Request(40, 220), kSowtFormat, 2, std::vector<int>(800, 0)));
    for (std::size_t y = 0; y < rows.size(); ++y) {
        const bool band = (y >= 20 && y <= 100) || (y >= 120 && y <= 200);
        const bool wave = y == 60 || y == 160; // silence lies in the middle
        EXPECT_EQ(rows[y], std::string(40, wave ? 'F' : band ? 'b' : '.')) << y;
    }
}

TEST(WaveformDrawing, PointsUpForPositiveSamples) {
    const Picture rows = Letters(*Draw(Request(4, 120), kTwosFormat, 1, {32767, 32767, 32767, 32767}));
    EXPECT_EQ(rows[20], "FFFF");
    const Picture low = Letters(*Draw(Request(4, 120), kTwosFormat, 1, {-32768, -32768, -32768, -32768}));
    EXPECT_EQ(low[100], "FFFF");
}

TEST(WaveformDrawing, RefusesWhatItCanNotDraw) {
    WaveformDrawing drawing;
    const auto code = [&](const WaveformRequest& request, OSType format, std::uint32_t channels) {
        return drawing.Begin(request, {format, channels, 100});
    };
    EXPECT_EQ(code(Request(100, 100, 2), kSowtFormat, 2), -205);
    EXPECT_EQ(code(Request(100, 100), kRawFormat, 1), -4);
    EXPECT_EQ(code(Request(100, 100), kFloatFormat, 1), -2001);
    EXPECT_EQ(code(Request(100, 100), kSowtFormat, 0), -50);
    EXPECT_EQ(code(Request(0, 100), kSowtFormat, 1), -50);
    EXPECT_EQ(code(Request(-1, 100), kSowtFormat, 1), -50);
    for (const std::int32_t height : {-2'000'000'000, 0, 19, 39}) {
        EXPECT_EQ(code(Request(100, height), kSowtFormat, 1), -50) << height;
    }
    EXPECT_EQ(code(Request(100, 59), kSowtFormat, 2), -50);
    EXPECT_EQ(code(Request(100, 60), kSowtFormat, 2), 0);
    EXPECT_EQ(code(Request(100, 60), kSowtFormat, 65535), -50);
    EXPECT_EQ(code(Request(100'000, 100), kSowtFormat, 1), -108);
}

TEST(WaveformDrawing, TakesNoMoreAndNoLessThanAnnounced) {
    WaveformDrawing drawing;
    const std::vector<std::byte> bytes = SamplesToBytes(std::vector<int>(30, 0), std::endian::little);
    ASSERT_EQ(drawing.Begin(Request(10, 40), {kSowtFormat, 1, 10}), 0);
    drawing.AddFrames(bytes);
    drawing.AddFrames(bytes);
    EXPECT_EQ(Letters(*drawing.TakePicture())[20], "FFFFFFFFFF");

    ASSERT_EQ(drawing.Begin(Request(10, 40), {kSowtFormat, 1, 0}), 0);
    drawing.AddFrames(bytes);
    EXPECT_EQ(Letters(*drawing.TakePicture())[20], "bbbbbbbbbb");
}

} // namespace
} // namespace corvane
