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

TEST(SgiCodec, ReadsWhatImageMagickWritesEvenDamaged) {
    ExpectSamplesAreRead(qt::kSgiCodec, kSamples);
}

/// A header of the format, and what follows it. The dimensions are below 256.
Bytes MadeSgi(int storage, int sample_size, int width, int height, int channels,
              std::initializer_list<int> follows) {
    Bytes bytes = BytesOf({0x01, 0xDA, storage, sample_size, 0, 3, 0, width, 0, height, 0, channels});
    bytes.resize(512);
    const Bytes samples = BytesOf(follows);
    bytes.insert(bytes.end(), samples.begin(), samples.end());
    return bytes;
}

TEST(SgiCodec, RunsOfWordsAndGreyWithAlpha) {
    const auto read = [](const Bytes& bytes) { return PixelsOf(DecodeWhole(qt::kSgiCodec, bytes)); };
    // One row of a run of two words and a literal word; the table of one offset and one length in front.
    EXPECT_EQ(
        read(MadeSgi(1, 2, 3, 1, 1, {0, 0, 2, 8, 0, 0, 0, 10, 0, 2, 0xFF, 0xFF, 0, 0x81, 0x80, 0x80, 0, 0})),
        (Pixels{0xFFFFFFFF, 0xFFFFFFFF, 0xFF808080}));
    const Bytes grey = MadeSgi(0, 1, 2, 1, 2, {10, 20, 30, 40});
    EXPECT_TRUE(DecodeWhole(qt::kSgiCodec, grey).has_alpha);
    EXPECT_EQ(read(grey), (Pixels{0x1E0A0A0A, 0x28141414}));
    EXPECT_EQ(read(MadeSgi(0, 1, 1, 3, 1, {10})), (Pixels{0xFFFFFFFF, 0xFFFFFFFF, 0xFF0A0A0A}))
        << "it breaks off, from the bottom";
    Bytes named = MadeSgi(0, 1, 1, 1, 1, {10});
    std::memcpy(&named[24], "Otter", 5);
    EXPECT_EQ(TextsOf(qt::kSgiCodec, named), (Texts{{"nam", "Otter"}}));
}

} // namespace
