#include "tests/quicktime/codecs/codec_checks.h"

#include <gtest/gtest.h>

namespace {

using namespace corvane::test;

constexpr Sample kSamples[] = {
    {"-size 67x41 plasma: -colors 200", "plain.gif", 8},
    {"-size 67x41 plasma: -colors 200 -interlace GIF", "interlaced.gif", 8},
    {"-size 67x41 plasma: -colors 3", "few.gif", 2},
    {"-size 67x41 plasma: -colors 12", "sixteen.gif", 4},
    {"-size 67x41 pattern:gray50 -monochrome", "mono.gif", 1},
    {"-size 67x41 plasma: -alpha set -channel A -fx 'u.r>0.5' +channel -colors 100", "transparent.gif", 8},
    {"-size 67x41 gradient:", "grey.gif", 8},
    {"-size 1x1 xc:red", "one.gif", 1},
};

/// Frames that cover parts of the screen and leave it in every way.
constexpr const char* kAnimation =
    "-size 60x40 xc:red \\( -size 20x15 gradient:blue-white -repage 60x40+10+5 -set dispose background \\) "
    "\\( -size 20x15 plasma: -colors 30 -repage 60x40+25+15 -set dispose previous \\) "
    "\\( -size 30x30 radial-gradient:white-none -repage 60x40+20+10 -set dispose none \\) "
    "\\( -size 40x30 xc:green -repage 60x40+40+30 \\) -set delay 10";

TEST(GifCodec, ReadsWhatImageMagickWritesEvenDamaged) {
    ExpectSamplesAreRead(qt::kGifCodec, kSamples);
}

TEST(GifCodec, AFrameIsWhatAViewerShowsThen) {
    const MadeImages images;
    const std::string path = images.Make(kAnimation, "frames.gif");
    const Bytes bytes = FileBytes(path);
    const std::uint32_t count = FactsOf(qt::kGifCodec, bytes).image_count;
    ASSERT_EQ(count, 5U);
    for (std::uint32_t index = 1; index <= count; ++index) {
        SCOPED_TRACE(index);
        const std::string others = "-coalesce -swap 0," + std::to_string(index - 1) + " -delete 1--1";
        const Bytes expected = MagickRgba(images, path, others);
        EXPECT_EQ(Difference(RgbaOf(DecodeWhole(qt::kGifCodec, bytes, index)), expected), 0);
    }
    qt::PixelImage image;
    for (const std::uint32_t none : {0U, 6U})
        EXPECT_EQ(qt::kGifCodec.decode(*qt::MemorySource(std::span(bytes)), none, image), paramErr);
    ExpectDamageIsSurvived(qt::kGifCodec, bytes);
}

TEST(GifCodec, RefusesWhatHasNoFrameAndReadsComments) {
    using namespace std::string_view_literals;
    const auto code = [](std::string_view text) { return FactsCode(qt::kGifCodec, BytesOf(text)); };
    EXPECT_EQ(code("GIF89a\x02\0\x02\0\x80\0\0\0\0\0\xFF\xFF\xFF;"sv), codecBadDataErr);
    EXPECT_EQ(code("GIF89a\x02\0\x02\0\0\0\0,\0\0\0\0\x02\0\x02\0\0\x02\x02\x4C\x01\0;"sv), codecBadDataErr);
    EXPECT_EQ(code("GIF89a\xFF\xFF\x02\0\x80\0\0\0\0\0\xFF\xFF\xFF,\0\0\0\0\x02\0\x02\0\0\x02\0;"sv),
              codecSizeErr);
    const MadeImages images;
    const Bytes commented = images.MakeBytes("-size 5x5 xc:red -set comment 'two words'", "comment.gif");
    EXPECT_EQ(TextsOf(qt::kGifCodec, commented), (Texts{{"cmt", "two words"}}));
}

} // namespace
