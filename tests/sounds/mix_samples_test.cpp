#include "sounds/mix_samples.h"

#include "sounds/sample_format.h"
#include "tests/sounds/samples.h"

#include <gtest/gtest.h>

#include <cmath>

namespace corvane {
namespace {

TEST(MixSamples, AveragesTowardMinusInfinity) {
    for (const OSType format : {kSowtFormat, kTwosFormat}) {
        const std::endian order = *SixteenBitOrder(format);
        for (const std::size_t length : {0U, 1U, 5U, 8U, 15U, 16U, 33U, 999U}) {
            const std::vector<int> a = RandomSamples(length, 1);
            std::vector<int> b = RandomSamples(length, 2);
            if (length > 5) b[0] = 32767, b[1] = 32767, b[3] = 0; // extremes against each other, and -1 / 2
            std::vector<int> expected;
            for (std::size_t i = 0; i < length; ++i)
                expected.push_back(static_cast<int>(std::floor((a[i] + b[i]) / 2.0)));
            std::vector<std::byte> first = SamplesToBytes(a, order);
            std::vector<std::byte> second = SamplesToBytes(b, order);
            first.insert(first.begin(), std::byte{0});
            second.insert(second.begin(), std::byte{0});
            const std::span<std::byte> target = std::span(second).subspan(1);
            ASSERT_EQ(MixSamples(std::span(first).subspan(1), target, format, 1 + length % 2), 0);
            EXPECT_EQ(BytesToSamples(target, order), expected) << length;
        }
    }
}

TEST(MixSamples, AveragesAllPairsOfBytes) {
    std::vector<std::byte> a;
    std::vector<std::byte> b;
    for (int i = 0; i < 65536; ++i) {
        a.push_back(static_cast<std::byte>(i / 256));
        b.push_back(static_cast<std::byte>(i % 256));
    }
    ASSERT_EQ(MixSamples(a, b, kRawFormat, 1), 0);
    for (int i = 0; i < 65536; ++i) {
        ASSERT_EQ(std::to_integer<int>(b[static_cast<std::size_t>(i)]), (i / 256 + i % 256) / 2) << i;
    }
}

TEST(MixSamples, RefusesWhatDoesNotFit) {
    const std::vector<std::byte> a(8);
    std::vector<std::byte> b(8);
    std::vector<std::byte> shorter(6);
    EXPECT_EQ(MixSamples(a, shorter, kFloatFormat, 9), -50);
    EXPECT_EQ(MixSamples(a, b, kSowtFormat, 0), -4);
    EXPECT_EQ(MixSamples(a, b, kSowtFormat, 3), -4);
    EXPECT_EQ(MixSamples(a, b, kFloatFormat, 2), -4);
}

} // namespace
} // namespace corvane
