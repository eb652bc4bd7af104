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

TEST(PcxCodec, ReadsWhatImageMagickWrites) {
    ExpectSamplesAreRead(qt::kPcxCodec, kSamples);
}

TEST(PcxCodec, SurvivesDamage) {
    const MadeImages images;
    for (const Sample& sample : kSamples) {
        SCOPED_TRACE(sample.file);
        ExpectDamageIsSurvived(qt::kPcxCodec, images.MakeBytes(sample.arguments, sample.file));
    }
}

/// With the colours black, red, green and blue, and rows of two bytes a plane.
Bytes MadePcx(unsigned bits, unsigned planes, unsigned width, unsigned height,
              std::initializer_list<unsigned> stored) {
    Bytes bytes(128);
    const auto put = [&](std::size_t at, unsigned value) { bytes[at] = static_cast<std::byte>(value); };
    put(0, 10);
    put(1, 5);
    put(2, 1);
    put(3, bits);
    put(8, (width - 1) & 255);
    put(9, (width - 1) >> 8);
    put(10, (height - 1) & 255);
    put(11, (height - 1) >> 8);
    put(19, 255);
    put(23, 255);
    put(27, 255);
    put(65, planes);
    put(66, width * bits <= 16 ? 2 : 255);
    put(67, width * bits <= 16 ? 0 : 255);
    for (const unsigned byte : stored) bytes.push_back(static_cast<std::byte>(byte));
    return bytes;
}

TEST(PcxCodec, PlanesAndPackedIndices) {
    const auto planes = DecodeWhole(qt::kPcxCodec, MadePcx(1, 2, 4, 1, {0x50, 0, 0x30, 0}));
    const auto packed = DecodeWhole(qt::kPcxCodec, MadePcx(2, 1, 4, 1, {0x1B, 0}));
    for (const qt::PixelImage* image : {&planes, &packed}) {
        EXPECT_EQ(image->Row(0)[0], 0xFF000000);
        EXPECT_EQ(image->Row(0)[1], 0xFFFF0000);
        EXPECT_EQ(image->Row(0)[2], 0xFF00FF00);
        EXPECT_EQ(image->Row(0)[3], 0xFF0000FF);
    }
    const auto black_and_white = DecodeWhole(qt::kPcxCodec, MadePcx(1, 1, 4, 1, {0x50, 0}));
    EXPECT_EQ(black_and_white.Row(0)[0], 0xFF000000);
    EXPECT_EQ(black_and_white.Row(0)[1], 0xFFFFFFFF) << "whatever colours the header has";
    // A run over three rows, then the end of the data.
    const auto runs = DecodeWhole(qt::kPcxCodec, MadePcx(8, 1, 2, 4, {0xC5, 7}));
    EXPECT_EQ(runs.Row(1)[1], 0xFF070707);
    EXPECT_EQ(runs.Row(2)[0], 0xFF070707);
    EXPECT_EQ(runs.Row(3)[0], 0xFFFFFFFF);
}

TEST(PcxCodec, RefusesBombs) {
    const Bytes bomb = MadePcx(8, 1, 16'000, 16'000, {0xFF, 1});
    qt::PixelImage image;
    EXPECT_EQ(qt::kPcxCodec.decode(*qt::MemorySource(std::span(bomb)), 1, image), codecBadDataErr);
    EXPECT_EQ(image.width(), 0);
}

} // namespace
