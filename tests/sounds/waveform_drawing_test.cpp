#include "sounds/waveform_drawing.h"

#include "sounds/sample_format.h"
#include "tests/sounds/samples.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>

namespace corvane {
namespace {

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

TEST(WaveformDrawing, RefusesWhatItCanNotDraw) {
    WaveformDrawing drawing;
    const auto code = [&](std::int32_t width, std::int32_t height, std::uint32_t channels,
                          OSType format = kSowtFormat) {
        return drawing.Begin(Request(width, height), {format, channels, 100});
    };
    EXPECT_EQ(drawing.Begin(Request(100, 100, 2), {kSowtFormat, 2, 100}), -205);
    EXPECT_EQ(code(100, 100, 1, kFloatFormat), -2001);
    EXPECT_EQ(code(100, 100, 0), -50);
    EXPECT_EQ(code(0, 100, 1), -50);
    for (const std::int32_t height : {-2'000'000'000, 0, 19, 39})
        EXPECT_EQ(code(100, height, 1), -50) << height;
    EXPECT_EQ(code(100, 59, 2), -50);
    EXPECT_EQ(code(100, 60, 2), 0);
    EXPECT_EQ(code(100, 60, 65535), -50);
    EXPECT_EQ(code(100'000, 100, 1), -108);
}

TEST(WaveformDrawing, TakesNoMoreAndNoLessThanAnnounced) {
    const std::vector<std::byte> bytes = SamplesToBytes(std::vector<int>(30, 0), std::endian::little);
    for (const auto& [announced, red] : {std::pair{10U, 1}, {0U, 200}}) {
        WaveformDrawing drawing;
        ASSERT_EQ(drawing.Begin(Request(10, 40), {kSowtFormat, 1, announced}), 0);
        drawing.AddFrames(bytes);
        drawing.AddFrames(bytes);
        const PixelBufferHandle picture = drawing.TakePicture();
        const std::byte* row = picture->GetBaseAddress() + std::size_t{20} * picture->GetRowBytes();
        for (std::size_t x = 0; x < 10; ++x) EXPECT_EQ(std::to_integer<int>(row[4 * x]), red) << x;
    }
}

} // namespace
} // namespace corvane
