#include "tests/quicktime/codecs/codec_checks.h"

#include <gtest/gtest.h>

namespace {

using namespace corvane::test;

constexpr Sample kSamples[] = {
    {"-size 67x41 plasma: -type TrueColor -compress None", "rgb.tga", 24},
    {"-size 67x41 plasma: -posterize 3 -type TrueColor -compress RLE", "runs.tga", 24},
    {"-size 67x41 plasma: -alpha set -channel A -fx u.r -compress None", "rgba.tga", 32},
    {"-size 67x41 plasma: -alpha set -channel A -fx u.r +channel -posterize 4 -type TrueColorMatte -compress "
     "RLE",
     "rgbaruns.tga", 32},
    {"-size 67x41 plasma: -colors 60 -compress None", "palette.tga", 8},
    {"-size 67x41 plasma: -colors 6 -compress RLE", "paletteruns.tga", 8},
    {"-size 67x41 plasma: -colorspace Gray -compress None", "grey.tga", 40},
    {"-size 67x41 plasma: -colorspace Gray -posterize 3 -compress RLE", "greyruns.tga", 40},
    {"-size 67x41 plasma: -type TrueColor -orient TopLeft -compress None", "top.tga", 24},
    {"-size 1x1 xc:red -type TrueColor", "one.tga", 24},
};

TEST(TgaCodec, ReadsWhatImageMagickWritesEvenDamaged) {
    ExpectSamplesAreRead(qt::kTgaCodec, kSamples, "-auto-orient"); // which it leaves to the viewer
}

TEST(TgaCodec, OriginsDepthsAndRunsOverRows) {
    const auto read = [](std::initializer_list<int> values) {
        return PixelsOf(DecodeWhole(qt::kTgaCodec, BytesOf(values)));
    };
    // 2 by 2 of 16 bits: red, green below blue, white; bottom left first, then from the top right.
    EXPECT_EQ(read({0,    0,    2,    0,    0,    0, 0,    0,   0, 0, 0, 0, 2, 0, 2, 0, 16, 0, //
                    0x00, 0x7C, 0xE0, 0x03, 0x1F, 0, 0xFF, 0x7F}),
              (Pixels{0xFF0000FF, 0xFFFFFFFF, 0xFFFF0000, 0xFF00FF00}));
    EXPECT_EQ(read({0,    0,    2,    0,    0,    0, 0,    0,   0, 0, 0, 0, 2, 0, 2, 0, 16, 0x30, //
                    0x00, 0x7C, 0xE0, 0x03, 0x1F, 0, 0xFF, 0x7F}),
              (Pixels{0xFF00FF00, 0xFFFF0000, 0xFFFFFFFF, 0xFF0000FF}));
    // The alpha bit; a packet of three equal pixels that ends in the second row; data that breaks off.
    EXPECT_EQ(read({0, 0, 10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 3, 0, 16, 0x21, 0x82, 0x1F, 0x80, 0, 0xE0, 3}),
              (Pixels{0xFF0000FF, 0xFF0000FF, 0xFF0000FF, 0x0000FF00, 0xFFFFFFFF, 0xFFFFFFFF}));
    // A palette that begins at 5, of 32-bit colours.
    EXPECT_EQ(read({0, 1, 1, 5, 0, 2, 0, 32, 0, 0, 0, 0, 3, 0, 1, 0, 8, 0, 1, 2, 3, 4, 5, 6, 7, 8, 5, 6, 7}),
              (Pixels{0x04030201, 0x08070605, 0xFF000000}));
    // Grey with alpha.
    EXPECT_EQ(read({0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 1, 0, 16, 8, 0x40, 0x80, 0xFE, 0xFF}),
              (Pixels{0x80404040, 0xFFFEFEFE}));
}

TEST(TgaCodec, RefusesWhatDoesNotFit) {
    EXPECT_FALSE(qt::kTgaCodec.sniff(Bytes(1024)));
    const Bytes good = BytesOf({1, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 2, 0, 24, 0, 'a', 1, 2, 3});
    EXPECT_TRUE(qt::kTgaCodec.sniff(good));
    EXPECT_FALSE(qt::kTgaCodec.sniff(std::span(good).first(19))) << "no pixels";
    // A cursor's kind of numbers, a map that is none, odd bits of pixels and of alpha, text that is none.
    for (const auto& [at, value] :
         {std::pair(3, 1), {1, 1}, {16, 25}, {17, 3}, {17, 64}, {18, 1}, {2, 12}, {14, 0}}) {
        Bytes changed = good;
        changed[static_cast<std::size_t>(at)] = static_cast<std::byte>(value);
        EXPECT_FALSE(qt::kTgaCodec.sniff(changed)) << at;
    }
    const MadeImages images;
    const Bytes commented = images.MakeBytes("-size 5x5 xc:red -set comment 'two words'", "comment.tga");
    EXPECT_EQ(TextsOf(qt::kTgaCodec, commented), (Texts{{"cmt", "two words"}}));
}

} // namespace
