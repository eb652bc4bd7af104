#include "tests/quicktime/codecs/codec_checks.h"

#include <gtest/gtest.h>

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

TEST(BmpCodec, ReadsWhatImageMagickWrites) {
    ExpectSamplesAreRead(qt::kBmpCodec, kSamples);
}

TEST(BmpCodec, SurvivesDamage) {
    const MadeImages images;
    for (const Sample& sample : kSamples) {
        SCOPED_TRACE(sample.file);
        ExpectDamageIsSurvived(qt::kBmpCodec, images.MakeBytes(sample.arguments, sample.file));
    }
}

void Put16(Bytes& bytes, std::size_t at, unsigned value) {
    bytes[at] = static_cast<std::byte>(value);
    bytes[at + 1] = static_cast<std::byte>(value >> 8);
}

void Put32(Bytes& bytes, std::size_t at, std::uint32_t value) {
    Put16(bytes, at, value & 0xFFFF);
    Put16(bytes, at + 2, value >> 16);
}

/// Headers, four colours (black, red, green, blue) and then the stored pixels.
Bytes MadeBmp(std::uint32_t width, std::uint32_t height, unsigned bits, std::uint32_t compression,
              std::initializer_list<unsigned> stored) {
    Bytes bytes(54 + 16);
    bytes[0] = std::byte{'B'};
    bytes[1] = std::byte{'M'};
    Put32(bytes, 10, 70);
    Put32(bytes, 14, 40);
    Put32(bytes, 18, width);
    Put32(bytes, 22, height);
    Put16(bytes, 26, 1);
    Put16(bytes, 28, bits);
    Put32(bytes, 30, compression);
    Put32(bytes, 46, 4);
    Put32(bytes, 58, 0xFF0000);
    Put32(bytes, 62, 0x00FF00);
    Put32(bytes, 66, 0x0000FF);
    for (const unsigned byte : stored) bytes.push_back(static_cast<std::byte>(byte));
    return bytes;
}

std::string Letters(const qt::PixelImage& image) {
    std::string text;
    for (std::int32_t y = 0; y < image.height(); ++y) {
        for (std::int32_t x = 0; x < image.width(); ++x) {
            const std::uint32_t pixel = image.Row(y)[x];
            text += pixel == 0xFF000000   ? '0'
                    : pixel == 0xFFFF0000 ? 'r'
                    : pixel == 0xFF00FF00 ? 'g'
                    : pixel == 0xFF0000FF ? 'b'
                    : pixel == 0xFFFFFFFF ? 'w'
                                          : '?';
        }
        text += ' ';
    }
    return text;
}

TEST(BmpCodec, RunsJumpsAndLiterals) {
    const auto read = [](const Bytes& bytes) { return Letters(DecodeWhole(qt::kBmpCodec, bytes)); };
    // From the bottom: a run of four nibbles, end of row; three literal nibbles (padded to a word), a jump of
    // one right and one up, a run that is longer than the row, end.
    EXPECT_EQ(read(MadeBmp(4, 3, 4, 2, {4, 0x12, 0, 0, 0, 3, 0x12, 0x30, 0, 2, 0, 1, 9, 0x33, 0, 1})),
              "000b rgb0 rgrg ");
    EXPECT_EQ(read(MadeBmp(4, 2, 8, 1, {2, 1, 0, 3, 2, 2, 3, 0, 0, 0, 4, 3, 0, 1})), "bbbb rrgg ");
    // Breaks off in the second row from the bottom.
    EXPECT_EQ(read(MadeBmp(2, 3, 8, 1, {2, 1, 0, 0, 1, 2})), "ww ww rr ");
    EXPECT_EQ(read(MadeBmp(2, 0xFFFFFFFE, 8, 0, {1, 2, 0, 0, 3, 0, 0, 0})), "rg b0 "); // from the top
    EXPECT_EQ(read(MadeBmp(2, 3, 8, 0, {1, 2, 0, 0, 7, 3, 0, 0})), "ww 0b rg ");       // 7: no such colour
}

TEST(BmpCodec, FactsAndRefusals) {
    const MadeImages images;
    const auto facts_of = [](const Bytes& bytes, qt::ImageFacts& facts) {
        return qt::kBmpCodec.read_facts(*qt::MemorySource(std::span(bytes)), facts);
    };
    qt::ImageFacts facts;
    ASSERT_EQ(
        facts_of(images.MakeBytes("-size 67x41 plasma: -units PixelsPerInch -density 300x150", "bmp3:d.bmp"),
                 facts),
        noErr);
    EXPECT_EQ(facts.description.cType, qt::Code("WRLE"));
    EXPECT_EQ((facts.description.hRes + 0x8000) >> 16, 300);
    EXPECT_EQ((facts.description.vRes + 0x8000) >> 16, 150);
    EXPECT_EQ(facts.description.spatialQuality, 1024);
    EXPECT_EQ(facts_of(MadeBmp(30'000, 30'000, 8, 0, {1}), facts), noErr);
    EXPECT_EQ(facts_of(MadeBmp(30'001, 1, 8, 0, {1}), facts), codecSizeErr);
    EXPECT_EQ(facts_of(MadeBmp(0, 1, 8, 0, {1}), facts), codecBadDataErr);
    EXPECT_EQ(facts_of(MadeBmp(4, 4, 8, 0, {}), facts), codecBadDataErr);   // no pixels
    EXPECT_EQ(facts_of(MadeBmp(4, 4, 5, 0, {1}), facts), codecBadDataErr);  // bits
    EXPECT_EQ(facts_of(MadeBmp(4, 4, 24, 4, {1}), facts), codecBadDataErr); // a JPEG inside
    EXPECT_EQ(facts_of(MadeBmp(4, 4, 24, 1, {1}), facts), codecBadDataErr); // runs of another depth
    qt::PixelImage image;
    const Bytes bomb = MadeBmp(16'000, 16'000, 8, 0, {1, 2, 3, 4});
    EXPECT_EQ(qt::kBmpCodec.decode(*qt::MemorySource(std::span(bomb)), 1, image), codecBadDataErr);
    EXPECT_EQ(image.width(), 0); // no memory was taken for it
}

} // namespace
