#include "tests/quicktime/codecs/codec_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace {

using namespace corvane::test;

constexpr Sample kSamples[] = {
    {"-size 67x41 plasma: -depth 8 -type TrueColor -quality 100", "rgb.jp2", 24},
    {"-size 67x41 plasma: -depth 8 -type TrueColor -quality 100", "rgb.j2k", 24},
    {"-size 67x41 plasma: -depth 8 -type TrueColor -quality 60", "lossy.jp2", 24},
    {"-size 67x41 plasma: -depth 8 -colorspace Gray -quality 100", "grey.jp2", 40},
    {"-size 67x41 plasma: -depth 8 -alpha set -channel A -fx u.r -quality 100", "rgba.jp2", 32},
    {"-size 67x41 plasma: -depth 16 -type TrueColor -quality 100", "deep.jp2", 24, 1},
    {"-size 300x200 plasma: -depth 8 -type TrueColor -quality 100", "larger.jp2", 24},
    {"-size 1x1 xc:red -depth 8 -type TrueColor", "one.jp2", 24},
};

TEST(Jpeg2000Codec, ReadsWhatImageMagickWritesEvenDamaged) {
    ExpectSamplesAreRead(qt::kJpeg2000Codec, std::span(kSamples).first(5), "", 60);
    ExpectSamplesAreRead(qt::kJpeg2000Codec, std::span(kSamples).subspan(5), "", 0); // which takes long
}

/// Where the first box of this type begins.
std::size_t FindBox(const Bytes& bytes, std::string_view type) {
    const Bytes wanted = BytesOf(type);
    const auto found = std::search(bytes.begin(), bytes.end(), wanted.begin(), wanted.end());
    return static_cast<std::size_t>(found - bytes.begin()) - 4;
}

TEST(Jpeg2000Codec, InksAndBoxesToSkip) {
    const MadeImages images;
    const Bytes colours = images.MakeBytes(
        "-size 67x41 plasma: -depth 8 -alpha set -channel A -fx u.r -quality 100", "rgba.jp2");
    const qt::PixelImage plain = DecodeWhole(qt::kJpeg2000Codec, colours);

    Bytes inks = colours;
    constexpr std::byte kInks{12};
    const std::size_t space = FindBox(inks, "colr") + 14; // the last byte of the number
    ASSERT_EQ(inks[space], std::byte{16});
    inks[space] = kInks;
    const qt::PixelImage printed = DecodeWhole(qt::kJpeg2000Codec, inks);
    EXPECT_FALSE(printed.has_alpha);
    for (std::int32_t x = 0; x < plain.width(); ++x) {
        const std::uint32_t ink = plain.Row(20)[x];
        const auto light = [&](std::uint32_t value) {
            return std::round((255 - value) * (255 - qt::Alpha(ink)) / 255.0);
        };
        const std::uint32_t pixel = printed.Row(20)[x];
        ASSERT_EQ(qt::Alpha(pixel), 255U);
        ASSERT_NEAR(qt::Red(pixel), light(qt::Red(ink)), 1);
        ASSERT_NEAR(qt::Green(pixel), light(qt::Green(ink)), 1);
        ASSERT_NEAR(qt::Blue(pixel), light(qt::Blue(ink)), 1);
    }

    Bytes padded = colours; // with something of another program in front of the picture
    constexpr std::uint32_t kPadding = 3U << 20;
    Bytes box = BytesOf(std::string_view("\0\x30\0\0uuid", 8));
    box.resize(kPadding);
    padded.insert(padded.begin() + static_cast<std::ptrdiff_t>(FindBox(padded, "jp2c")), box.begin(),
                  box.end());
    EXPECT_EQ(RgbaOf(DecodeWhole(qt::kJpeg2000Codec, padded)), RgbaOf(plain));
}

TEST(Jpeg2000Codec, RefusesWhatIsTooLarge) {
    const MadeImages images;
    Bytes bytes = images.MakeBytes("-size 67x41 plasma: -type TrueColor", "large.j2k");
    const auto facts_code = [&] { return FactsCode(qt::kJpeg2000Codec, bytes); };
    ASSERT_EQ(facts_code(), noErr);
    bytes[9] = bytes[10] = std::byte{0x50}; // 20,560 or more columns: many tiles more than the data can hold
    EXPECT_EQ(facts_code(), codecBadDataErr);
    bytes[9] = bytes[10] = std::byte{0};
    bytes[24] = bytes[25] = std::byte{0};
    for (const std::size_t at : {8U, 12U, 24U, 28U}) // columns and rows of the image and of its tiles
        bytes[at + 2] = std::byte{0x60};             // 24,576
    EXPECT_EQ(facts_code(), noErr);
    ExpectNoRoomIsTaken(qt::kJpeg2000Codec, bytes, codecSizeErr);
    bytes[10] = bytes[26] = std::byte{0x80}; // 32,768 columns
    EXPECT_EQ(facts_code(), codecSizeErr);

    bytes = images.MakeBytes("-size 600x600 plasma: -type TrueColor", "precincts.j2k");
    const Bytes marker = BytesOf({0xFF, 0x52});
    const auto style = std::search(bytes.begin(), bytes.end(), marker.begin(), marker.end()) - bytes.begin();
    const auto at = static_cast<std::size_t>(style);
    const Bytes sizes(std::to_integer<std::size_t>(bytes[at + 9]) + 1); // of one sample in each resolution
    bytes[at + 3] = static_cast<std::byte>(12 + sizes.size());
    bytes[at + 4] |= std::byte{1};
    bytes.insert(bytes.begin() + style + 14, sizes.begin(), sizes.end());
    EXPECT_EQ(facts_code(), codecBadDataErr) << "the codec would take 600 bytes for each";
    std::fill_n(bytes.begin() + style + 14, sizes.size(), std::byte{0x77});
    EXPECT_EQ(facts_code(), noErr);
}

} // namespace
