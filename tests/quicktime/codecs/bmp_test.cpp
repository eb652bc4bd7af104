#include "tests/quicktime/codecs/codec_checks.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace corvane::test;

constexpr Sample kSamples[] = {
    {"-size 67x41 plasma: -type TrueColor", "bmp3:rgb.bmp", 24},
    {"-size 67x41 plasma: -type TrueColor", "bmp2:os2.bmp", 24},
    {"-size 67x41 plasma: -alpha set -channel A -fx u.r", "alpha.bmp", 32},
    {"-size 67x41 plasma: -colors 200", "bmp3:p8.bmp", 8},
    {"-size 67x41 plasma: -colors 200 -compress RLE", "rle8.bmp", 8},
    {"-size 67x41 plasma: -colors 16 -type Palette", "bmp3:p4.bmp", 4},
    {"-size 67x41 plasma: -colors 200", "bmp2:os2p8.bmp", 8},
    {"-size 67x41 pattern:gray50 -monochrome", "bmp3:mono.bmp", 1},
    {"-size 67x41 plasma: -define bmp:subtype=RGB565", "rgb565.bmp", 16},
    {"-size 67x41 plasma: -define bmp:subtype=RGB555", "rgb555.bmp", 16},
    {"-size 1x1 xc:red", "bmp3:one.bmp", 24},
};

TEST(BmpCodec, ReadsWhatImageMagickWritesEvenDamaged) {
    ExpectSamplesAreRead(qt::kBmpCodec, kSamples);
}

/// Headers, four colours (black, red, green, blue) and then the stored pixels.
Bytes MadeBmp(std::uint32_t width, std::uint32_t height, unsigned bits, std::uint32_t compression,
              std::initializer_list<int> stored) {
    Bytes bytes(54 + 16);
    const auto put = [&](std::size_t at, std::uint32_t value) {
        for (std::size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<std::byte>(value >> 8 * i);
    };
    put(0, 'B' | 'M' << 8);
    put(10, 70);
    put(14, 40);
    put(18, width);
    put(22, height);
    put(26, 1 | bits << 16);
    put(30, compression);
    put(46, 4);
    put(58, 0xFF0000);
    put(62, 0x00FF00);
    put(66, 0x0000FF);
    const Bytes pixels = BytesOf(stored);
    bytes.insert(bytes.end(), pixels.begin(), pixels.end());
    return bytes;
}

TEST(BmpCodec, RunsJumpsAndLiterals) {
    const auto read = [](const Bytes& bytes) { return Drawn(qt::kBmpCodec, bytes); };
    // From the bottom: a run of four nibbles, end of row; three literal nibbles (padded to a word), a jump of
    // one right and one up, a run that is longer than the row, end.
    EXPECT_EQ(read(MadeBmp(4, 3, 4, 2, {4, 0x12, 0, 0, 0, 3, 0x12, 0x30, 0, 2, 0, 1, 9, 0x33, 0, 1})),
              "###b\nrgb#\nrgrg\n");
    EXPECT_EQ(read(MadeBmp(4, 2, 8, 1, {2, 1, 0, 3, 2, 2, 3, 0, 0, 0, 4, 3, 0, 1})), "bbbb\nrrgg\n");
    // Jumps along the row until a number of 32 bits would begin anew, then pixels.
    Bytes far = MadeBmp(4, 2, 8, 1, {});
    const Bytes jump = BytesOf({0, 2, 255, 0});
    const Bytes end = BytesOf({2, 1, 0, 0, 4, 3, 0, 1});
    for (std::int64_t x = 0; x <= std::numeric_limits<std::int32_t>::max(); x += 255)
        far.insert(far.end(), jump.begin(), jump.end());
    far.insert(far.end(), end.begin(), end.end());
    EXPECT_EQ(read(far), "bbbb\n####\n");
    // Breaks off in the second row from the bottom.
    EXPECT_EQ(read(MadeBmp(2, 3, 8, 1, {2, 1, 0, 0, 1, 2})), "..\n..\nrr\n");
    EXPECT_EQ(read(MadeBmp(2, 0xFFFFFFFE, 8, 0, {1, 2, 0, 0, 3, 0, 0, 0})), "rg\nb#\n"); // from the top
    EXPECT_EQ(read(MadeBmp(2, 3, 8, 0, {1, 2, 0, 0, 7, 3, 0, 0})), "..\n#b\nrg\n");      // 7: no such colour
}

TEST(BmpCodec, FactsAndRefusals) {
    const MadeImages images;
    Bytes made = images.MakeBytes("-size 67x41 plasma: -units PixelsPerInch -density 300x150", "bmp3:d.bmp");
    EXPECT_EQ(ResolutionOf(qt::kBmpCodec, made), std::pair(300, 150));
    EXPECT_EQ(FactsOf(qt::kBmpCodec, made).description.cType, qt::Code("WRLE"));
    EXPECT_EQ(FactsOf(qt::kBmpCodec, made).description.spatialQuality, 1024);
    made[41] = made[45] = std::byte{0x80}; // below 0
    EXPECT_EQ(ResolutionOf(qt::kBmpCodec, made), std::pair(72, 72));
    const auto code = [](const Bytes& bytes) { return FactsCode(qt::kBmpCodec, bytes); };
    EXPECT_EQ(code(MadeBmp(30'000, 30'000, 8, 0, {1})), noErr);
    EXPECT_EQ(code(MadeBmp(30'001, 1, 8, 0, {1})), codecSizeErr);
    EXPECT_EQ(code(MadeBmp(0, 1, 8, 0, {1})), codecBadDataErr);
    EXPECT_EQ(code(MadeBmp(4, 4, 8, 0, {})), codecBadDataErr) << "no pixels";
    EXPECT_EQ(code(MadeBmp(4, 4, 5, 0, {1})), codecBadDataErr) << "bits";
    EXPECT_EQ(code(MadeBmp(4, 4, 24, 4, {1})), codecBadDataErr) << "a JPEG inside";
    EXPECT_EQ(code(MadeBmp(4, 4, 24, 1, {1})), codecBadDataErr) << "runs of another depth";
}

} // namespace
