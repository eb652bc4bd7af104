#include "tests/quicktime/codecs/codec_checks.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace corvane::test;

constexpr Sample kSamples[] = {
    {"-size 67x41 plasma: -depth 8 -type TrueColor -compress None", "rgb.sgi", 24},
    {"-size 67x41 plasma: -depth 8 -type TrueColor -compress RLE", "runs.sgi", 24},
    {"-size 67x41 plasma: -depth 8 -alpha set -channel A -fx u.r -compress RLE", "rgba.sgi", 32},
    {"-size 67x41 plasma: -depth 8 -colorspace Gray -compress None", "grey.sgi", 40},
    {"-size 67x41 plasma: -depth 16 -type TrueColor -compress None", "deep.sgi", 24},
    {"-size 1x1 xc:red -depth 8 -type TrueColor", "one.sgi", 24},
};

TEST(SgiCodec, ReadsWhatImageMagickWrites) {
    ExpectSamplesAreRead(qt::kSgiCodec, kSamples);
}

TEST(SgiCodec, SurvivesDamage) {
    const MadeImages images;
    for (const Sample& sample : kSamples) {
        SCOPED_TRACE(sample.file);
        ExpectDamageIsSurvived(qt::kSgiCodec, images.MakeBytes(sample.arguments, sample.file));
    }
}

/// A header of the format, and what follows it.
Bytes MadeSgi(unsigned storage, unsigned sample_size, unsigned width, unsigned height, unsigned channels,
              std::initializer_list<unsigned> follows) {
    Bytes bytes(512);
    const unsigned fields[] = {
        0x01,        0xDA,         storage,       sample_size,   0, 3, width >> 8, width & 255,
        height >> 8, height & 255, channels >> 8, channels & 255};
    for (std::size_t i = 0; i < std::size(fields); ++i) bytes[i] = static_cast<std::byte>(fields[i]);
    for (const unsigned byte : follows) bytes.push_back(static_cast<std::byte>(byte));
    return bytes;
}

TEST(SgiCodec, RunsOfWordsAndGreyWithAlpha) {
    // One row of a run of two words and a literal word; the table of one offset and one length in front.
    const auto deep = DecodeWhole(
        qt::kSgiCodec,
        MadeSgi(1, 2, 3, 1, 1, {0, 0, 2, 8, 0, 0, 0, 10, 0, 2, 0xFF, 0xFF, 0, 0x81, 0x80, 0x80, 0, 0}));
    EXPECT_EQ(deep.Row(0)[0], 0xFFFFFFFF);
    EXPECT_EQ(deep.Row(0)[1], 0xFFFFFFFF);
    EXPECT_EQ(deep.Row(0)[2], 0xFF808080);
    const auto grey = DecodeWhole(qt::kSgiCodec, MadeSgi(0, 1, 2, 1, 2, {10, 20, 30, 40}));
    EXPECT_TRUE(grey.has_alpha);
    EXPECT_EQ(grey.Row(0)[0], 0x1E0A0A0A);
    EXPECT_EQ(grey.Row(0)[1], 0x28141414);
    const auto cut = DecodeWhole(qt::kSgiCodec, MadeSgi(0, 1, 1, 3, 1, {10})); // from the bottom
    EXPECT_EQ(cut.Row(0)[0], 0xFFFFFFFF);
    EXPECT_EQ(cut.Row(2)[0], 0xFF0A0A0A);
}

TEST(SgiCodec, RefusesBombsAndReadsTheName) {
    qt::PixelImage image;
    const Bytes bomb = MadeSgi(0, 1, 16'000, 16'000, 1, {1, 2, 3});
    EXPECT_EQ(qt::kSgiCodec.decode(*qt::MemorySource(std::span(bomb)), 1, image), codecBadDataErr);
    EXPECT_EQ(image.width(), 0);
    Bytes named = MadeSgi(0, 1, 1, 1, 1, {10});
    std::memcpy(&named[24], "Otter", 5);
    std::vector<qt::MetadataItem> items;
    EXPECT_EQ(qt::kSgiCodec.read_metadata(*qt::MemorySource(std::span(named)), items), noErr);
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0].text, "Otter");
}

} // namespace
