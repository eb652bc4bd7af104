#include "tests/quicktime/codecs/written_images.h"

#include <algorithm>
#include <random>

namespace {

using namespace corvane::test;

constexpr OSType kMacPaint = qt::Code("PNTG");

Bytes WithFileHeader(const Bytes& document) {
    Bytes bytes(128 + document.size());
    for (std::size_t i = 0; i < 4; ++i) bytes[65 + i] = static_cast<std::byte>("PNTG"[i]);
    std::ranges::copy(document, bytes.begin() + 128);
    return bytes;
}

TEST(MacPaint, WhatIsWrittenIsReadByImageMagick) {
    const MadeImages images;
    // Larger than a page, smaller, and with nothing but greys to dither.
    for (const char* arguments :
         {"-size 700x800 plasma:", "-size 301x57 plasma:", "-size 576x720 xc:gray50"}) {
        SCOPED_TRACE(arguments);
        const auto image = MadeImage(images, arguments);
        const Bytes written = Written(kMacPaint, image);
        ASSERT_EQ(qt::FindImageCodec(std::span(written).first(qt::kSniffedBytes)), &qt::kMacPaintCodec);
        const auto page = DecodeWhole(qt::kMacPaintCodec, written);
        ASSERT_EQ(page.width(), 576);
        ASSERT_EQ(page.height(), 720);
        const Bytes with_header = WithFileHeader(written);
        EXPECT_EQ(FactsOf(qt::kMacPaintCodec, with_header).data_offset, 640U);
        EXPECT_EQ(Difference(RgbaOf(page), RgbaOf(DecodeWhole(qt::kMacPaintCodec, with_header))), 0);
        EXPECT_EQ(Difference(RgbaOf(page), MagickReads(images, with_header, "written.mac")), 0);

        // The dots are as dark as the image, and what it does not cover is white.
        double darkness = 0.0;
        double dots = 0.0;
        for (std::int32_t y = 0; y < page.height(); ++y) {
            for (std::int32_t x = 0; x < page.width(); ++x) {
                const bool covered = x < image.width() && y < image.height();
                if (!covered) {
                    ASSERT_EQ(page.Row(y)[x], 0xFFFFFFFF);
                    continue;
                }
                const std::uint32_t pixel = image.Row(y)[x];
                darkness +=
                    1.0 - (0.299 * qt::Red(pixel) + 0.587 * qt::Green(pixel) + 0.114 * qt::Blue(pixel)) / 255;
                dots += page.Row(y)[x] == 0xFF000000 ? 1.0 : 0.0;
            }
        }
        EXPECT_NEAR(dots / darkness, 1.0, 0.05);
    }
}

TEST(MacPaint, OtherDataIsNotItsOwn) {
    EXPECT_FALSE(qt::kMacPaintCodec.sniff(Bytes(1024)));
    Bytes noise(1024);
    std::mt19937 random(1);
    std::generate(noise.begin() + 512, noise.end(), [&] { return static_cast<std::byte>(random()); });
    EXPECT_FALSE(qt::kMacPaintCodec.sniff(noise));
}

TEST(MacPaint, SurvivesDamage) {
    const MadeImages images;
    const Bytes written = Written(kMacPaint, MadeImage(images, "-size 301x57 plasma:"));
    ExpectDamageIsSurvived(qt::kMacPaintCodec, WithFileHeader(written), 100);
}

} // namespace
