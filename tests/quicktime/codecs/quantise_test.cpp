#include "platform/quicktime/image_exporters/quantise.h"

#include "tests/quicktime/codecs/written_images.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using namespace corvane::test;

qt::IndexedImage Quantised(const qt::PixelImage& image, std::int32_t depth) {
    qt::IndexedImage indexed{};
    EXPECT_EQ(qt::Quantise(image, depth, indexed), noErr);
    EXPECT_EQ(indexed.width, image.width());
    EXPECT_EQ(indexed.height, image.height());
    EXPECT_EQ(indexed.indices.size(),
              static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height()));
    EXPECT_LT(std::ranges::max(indexed.indices), indexed.palette.size());
    return indexed;
}

std::uint32_t ColourAt(const qt::IndexedImage& image, std::int32_t x, std::int32_t y) {
    const std::int32_t place = y * image.width + x;
    return image.palette[image.indices[static_cast<std::size_t>(place)]];
}

/// The mean difference between the mean colours of blocks: what an eye sees from afar.
double BlockError(const qt::PixelImage& image, const qt::IndexedImage& indexed, bool grey) {
    constexpr std::int32_t kBlock = 16;
    double total = 0;
    int count = 0;
    for (std::int32_t top = 0; top + kBlock <= image.height(); top += kBlock) {
        for (std::int32_t left = 0; left + kBlock <= image.width(); left += kBlock) {
            std::array<double, 3> sums{};
            for (std::int32_t i = 0; i < kBlock * kBlock; ++i) {
                const std::int32_t x = left + i % kBlock;
                const std::int32_t y = top + i / kBlock;
                const std::uint32_t was = image.Row(y)[x];
                const std::uint32_t is = ColourAt(indexed, x, y);
                const double luminance =
                    0.299 * qt::Red(was) + 0.587 * qt::Green(was) + 0.114 * qt::Blue(was);
                sums[0] += qt::Red(is) - (grey ? luminance : qt::Red(was));
                sums[1] += qt::Green(is) - (grey ? luminance : qt::Green(was));
                sums[2] += qt::Blue(is) - (grey ? luminance : qt::Blue(was));
            }
            for (const double sum : sums) total += std::abs(sum) / (kBlock * kBlock);
            count += 3;
        }
    }
    return total / count;
}

TEST(Quantise, LooksAlikeFromAfar) {
    const MadeImages images;
    const qt::PixelImage image = MadeImage(images, "-size 256x192 -seed 7 plasma:red-blue -type TrueColor");
    struct Case {
        int depth;
        std::size_t colours;
        double error;
    };
    for (const Case& sample :
         {Case{8, 256, 1}, {4, 16, 6}, {1, 2, 2}, {40, 256, 1}, {36, 16, 1}, {34, 4, 1}, {33, 2, 2}}) {
        SCOPED_TRACE(sample.depth);
        const qt::IndexedImage indexed = Quantised(image, sample.depth);
        EXPECT_EQ(indexed.palette.size(), sample.colours);
        const bool grey = sample.depth > 32 || sample.depth == 1;
        EXPECT_LT(BlockError(image, indexed, grey), sample.error);
    }
}

TEST(Quantise, SpendsAColourOnWhatIsTransparent) {
    const MadeImages images;
    const qt::PixelImage image = MadeImage(
        images, "-size 100x80 plasma:red-blue -alpha set -region 50x80+0+0 -channel A -evaluate set 20%");
    const qt::IndexedImage indexed = Quantised(image, 8);
    EXPECT_LE(indexed.palette.size(), 256U);
    EXPECT_EQ(ColourAt(indexed, 10, 10), 0U);
    EXPECT_EQ(qt::Alpha(ColourAt(indexed, 90, 70)), 255U);
    EXPECT_EQ(ColourAt(Quantised(MadeImage(images, "-size 9x9 xc:none"), 36), 4, 4),
              qt::Pixel(255, 255, 255));
}

TEST(Quantise, KnowsNoOtherDepths) {
    const qt::PixelImage image = MakeImage(2, 2, 0U);
    qt::IndexedImage indexed{};
    for (const std::int32_t depth : {-1, 0, 3, 16, 24, 32, 35, 41, 48}) {
        EXPECT_EQ(qt::Quantise(image, depth, indexed), paramErr) << depth;
    }
}

} // namespace
