#include "tests/quicktime/codecs/written_images.h"

#include <algorithm>
#include <random>

namespace {

using namespace corvane::test;

constexpr OSType kMacPaint = qt::Code("PNTG");

Bytes WithFileHeader(const Bytes& document) {
    Bytes bytes(128 + document.size());
    std::ranges::copy(BytesOf("PNTG"), bytes.begin() + 65);
    std::ranges::copy(document, bytes.begin() + 128);
    return bytes;
}

TEST(MacPaint, WhatIsWrittenIsReadByImageMagickAndSurvivesDamage) {
    const MadeImages images;
    // Larger than a page, smaller, and with nothing but greys to dither.
    for (const char* arguments :
         {"-size 700x800 plasma:", "-size 301x57 plasma:", "-size 576x720 xc:gray50"}) {
        SCOPED_TRACE(arguments);
        const auto image = MadeImage(images, arguments);
        const Bytes written = Written(kMacPaint, image);
        ASSERT_EQ(SniffedCodec(written), &qt::kMacPaintCodec);
        const auto page = DecodeWhole(qt::kMacPaintCodec, written);
        EXPECT_EQ(std::pair(page.width(), page.height()), std::pair(576, 720));
        const Bytes with_header = WithFileHeader(written);
        EXPECT_EQ(FactsOf(qt::kMacPaintCodec, with_header).data_offset, 640U);
        EXPECT_EQ(Difference(RgbaOf(page), RgbaOf(DecodeWhole(qt::kMacPaintCodec, with_header))), 0);
        EXPECT_EQ(Difference(RgbaOf(page), MagickReads(images, with_header, "written.mac")), 0);

        // The dots are as dark as the image, and what it does not cover is white.
        double darkness = 0.0;
        double dots = 0.0;
        int dots_outside = 0;
        ForEachPixel(page, [&](int x, int y, std::uint32_t dot) {
            if (x >= image.width() || y >= image.height()) {
                dots_outside += dot == 0xFFFFFFFF ? 0 : 1;
                return;
            }
            const std::uint32_t pixel = image.Row(y)[x];
            darkness +=
                1.0 - (0.299 * qt::Red(pixel) + 0.587 * qt::Green(pixel) + 0.114 * qt::Blue(pixel)) / 255;
            dots += dot == 0xFF000000 ? 1.0 : 0.0;
        });
        EXPECT_EQ(dots_outside, 0);
        EXPECT_NEAR(dots / darkness, 1.0, 0.05);
        if (image.width() == 301) ExpectDamageIsSurvived(qt::kMacPaintCodec, with_header, 100);
    }
}

TEST(MacPaint, OtherDataIsNotItsOwn) {
    EXPECT_FALSE(qt::kMacPaintCodec.sniff(Bytes(1024)));
    Bytes noise(1024);
    std::mt19937 random(1);
    std::generate(noise.begin() + 512, noise.end(), [&] { return static_cast<std::byte>(random()); });
    EXPECT_FALSE(qt::kMacPaintCodec.sniff(noise));
}

} // namespace
