#include "tests/quicktime/codecs/codec_checks.h"

#include <gtest/gtest.h>

namespace {

using namespace corvane::test;

constexpr Sample kSamples[] = {
    {"-size 67x41 plasma: -type TrueColor", "rgb.pcx", 24},
    {"-size 67x41 plasma: -colors 100", "palette.pcx", 8},
    {"-size 67x41 plasma: -colorspace Gray", "grey.pcx", 24},
    {"-size 67x41 plasma: -alpha set -channel A -fx u.r", "rgba.pcx", 32},
    {"-size 67x41 pattern:gray50 -monochrome", "mono.pcx", 24},
    {"-size 1x1 xc:red -type TrueColor", "one.pcx", 24},
};

TEST(PcxCodec, ReadsWhatImageMagickWritesEvenDamaged) {
    ExpectSamplesAreRead(qt::kPcxCodec, kSamples);
}

/// With the colours black, red, green and blue, and rows of two bytes a plane.
Bytes MadePcx(int bits, int planes, int width, int height, std::initializer_list<int> stored) {
    Bytes bytes =
        BytesOf({10, 5, 1, bits, 0, 0, 0, 0, width - 1, (width - 1) >> 8, height - 1, (height - 1) >> 8});
    bytes.resize(128);
    for (const std::size_t at : {19U, 23U, 27U}) bytes[at] = std::byte{255};
    bytes[65] = static_cast<std::byte>(planes);
    bytes[66] = std::byte{2};
    const Bytes pixels = BytesOf(stored);
    bytes.insert(bytes.end(), pixels.begin(), pixels.end());
    return bytes;
}

TEST(PcxCodec, PlanesAndPackedIndices) {
    const auto read = [](const Bytes& bytes) { return Drawn(qt::kPcxCodec, bytes); };
    EXPECT_EQ(read(MadePcx(1, 2, 4, 1, {0x50, 0, 0x30, 0})), "#rgb\n");
    EXPECT_EQ(read(MadePcx(2, 1, 4, 1, {0x1B, 0})), "#rgb\n");
    EXPECT_EQ(read(MadePcx(1, 1, 4, 1, {0x50, 0})), "#.#.\n") << "whatever colours the header has";
    // A run over three rows, then the end of the data.
    const auto runs = PixelsOf(DecodeWhole(qt::kPcxCodec, MadePcx(8, 1, 2, 4, {0xC5, 7})));
    EXPECT_EQ(Pixels(runs.begin(), runs.begin() + 5), Pixels(5, 0xFF070707));
    EXPECT_EQ(runs[6], 0xFFFFFFFF);
}

TEST(PcxCodec, RefusesBombs) {
    Bytes bomb = MadePcx(8, 1, 16'000, 16'000, {0xFF, 1});
    bomb[66] = bomb[67] = std::byte{0xFF}; // bytes in a row
    ExpectNoRoomIsTaken(qt::kPcxCodec, bomb, codecBadDataErr);
}

} // namespace
