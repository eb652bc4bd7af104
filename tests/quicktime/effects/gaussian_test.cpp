#include "platform/quicktime/effects/gaussian.h"

#include "tests/quicktime/effects/effect_test.h"

#include <cmath>
#include <vector>

namespace {

using namespace effect_test;

/// Green after a blur by its definition, with the outermost pixels going on beyond the edges.
std::vector<double> ExactGreen(const qt::PixelImage& image, double sigma) {
    const int reach = static_cast<int>(std::ceil(sigma * 5));
    std::vector<double> weights;
    double sum = 0;
    for (int i = -reach; i <= reach; ++i) {
        weights.push_back(std::exp(-i * i / (2 * sigma * sigma)));
        sum += weights.back();
    }
    const int right = image.width() - 1;
    const int bottom = image.height() - 1;
    const auto at = [=](int x, int y) {
        const int place = y * (right + 1) + x;
        return static_cast<std::size_t>(place);
    };
    const double* const middle = weights.data() + reach;
    std::vector<double> rows(at(0, bottom + 1));
    std::vector<double> blurred(rows.size());
    ForEachPixel(image, [&](int x, int y, std::uint32_t) {
        for (int i = -reach; i <= reach; ++i)
            rows[at(x, y)] += middle[i] / sum * qt::Green(image.Row(y)[std::clamp(x + i, 0, right)]);
    });
    ForEachPixel(image, [&](int x, int y, std::uint32_t) {
        for (int i = -reach; i <= reach; ++i)
            blurred[at(x, y)] += middle[i] / sum * rows[at(x, std::clamp(y + i, 0, bottom))];
    });
    return blurred;
}

double GreenPsnr(const qt::PixelImage& image, const std::vector<double>& exact) {
    double error = 0;
    auto expected = exact.begin();
    ForEachPixel(
        image, [&](int, int, std::uint32_t pixel) { error += std::pow(*expected++ - qt::Green(pixel), 2); });
    return 10 * std::log10(255 * 255 / std::max(error / static_cast<double>(exact.size()), 1e-9));
}

qt::PixelImage Blurred(const qt::PixelImage& image, double sigma) {
    qt::PixelImage out = MakeImage(image.width(), image.height(), 0U);
    qt::GaussianBlur(image, sigma, out);
    return out;
}

TEST(Gaussian, IsCloseToItsDefinition) {
    // Blocks of black and white, the hardest of pictures.
    const qt::PixelImage noise = MakeNoise(13, 11, false);
    const qt::PixelImage image = MakeImage(
        97, 83, [&](int x, int y) { return noise.Row(y / 8)[x / 8] % 2 == 0 ? 0xFF00'0000 : 0xFFFF'FFFF; });
    for (const double sigma : {0.5, 1.0, 2.0, 3.9, 4.0, 4.5, 5.0, 7.3, 12.0, 30.0}) {
        const double psnr = GreenPsnr(Blurred(image, sigma), ExactGreen(image, sigma));
        EXPECT_GT(psnr, sigma < 4 ? 50 : 40) << sigma;
    }
}

TEST(Gaussian, KeepsEvenColoursAndTheirSharesOfAll) {
    for (const double sigma : {0.0, 0.3, 2.0, 5.0, 100.0}) {
        for (const std::uint32_t colour : {0xFF00'0000, 0xFFFF'FFFF, 0xFF01'80FE}) {
            const qt::PixelImage even = MakeImage(37, 19, colour);
            EXPECT_EQ(Difference(Blurred(even, sigma), even), 0U) << sigma << " " << colour;
        }
    }
    // A point in the middle spreads to all sides alike.
    const qt::PixelImage point = MakeImage(61, 61, [](int x, int y) {
        return std::max(std::abs(x - 30), std::abs(y - 30)) < 2 ? 0xFFFF'FFFF : 0xFF00'0000;
    });
    for (const double sigma : {2.0, 4.0, 4.7}) {
        const qt::PixelImage out = Blurred(point, sigma);
        for (std::int32_t i = 0; i < 30; ++i) {
            EXPECT_EQ(out.Row(30)[i], out.Row(30)[60 - i]) << sigma;
            EXPECT_NEAR(qt::Red(out.Row(30)[i]), qt::Red(out.Row(i)[30]), 1) << sigma;
        }
    }
}

TEST(Gaussian, WhatIsTransparentLendsNoColour) {
    const qt::PixelImage image = MakeImage(64, 8, [](int x, int) {
        return x < 32 ? 0x00FF'0000 : 0xFF00'00FF; // red, but nowhere to be seen
    });
    for (const double sigma : {1.5, 6.0}) {
        const qt::PixelImage out = Blurred(image, sigma);
        EXPECT_TRUE(out.has_alpha);
        EXPECT_NEAR(qt::Alpha(out.Row(4)[32]), 140, 24);
        for (std::int32_t x = 0; x < 64; ++x) {
            EXPECT_TRUE(qt::Alpha(out.Row(4)[x]) == 0 || qt::Red(out.Row(4)[x]) == 0) << x;
        }
    }
}

} // namespace
