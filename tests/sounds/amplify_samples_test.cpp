#include "sounds/amplify_samples.h"

#include "sounds/sample_format.h"
#include "tests/sounds/samples.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace corvane {
namespace {

/// Rounds to single precision with integers alone: 24 bits, ties to even.
double ToSingle(double value) {
    if (value == 0) return 0;
    int exponent = 0;
    const double mantissa = std::frexp(value, &exponent);
    return std::ldexp(std::nearbyint(std::ldexp(mantissa, 24)), exponent - 24);
}

/// In double precision, which holds the product of two singles exactly; then rounded once.
int Amplified(int sample, double factor, double level) {
    const double scaled = ToSingle(sample * factor);
    return static_cast<int>(std::trunc(std::fmin(std::fmax(scaled, ToSingle(-level - 1)), level)));
}

/// Runs the kernel on a block that begins at an odd distance from a 64-byte boundary.
std::vector<int> Amplify(const std::vector<int>& samples, OSType format, float factor, float limit,
                         std::size_t shift) {
    const std::endian order = *SixteenBitOrder(format);
    const std::vector<std::byte> bytes = SamplesToBytes(samples, order);
    alignas(64) static std::byte memory[8192];
    const std::span<std::byte> block(memory + shift, bytes.size());
    std::copy(bytes.begin(), bytes.end(), block.begin());
    memory[shift + bytes.size()] = std::byte{0xA5};
    EXPECT_EQ(AmplifyBlock(block, format, 1, samples.size(), factor, limit), 0);
    EXPECT_EQ(memory[shift + bytes.size()], std::byte{0xA5});
    return BytesToSamples(block, order);
}

TEST(AmplifySamples, EqualsTheReferenceAtAnyLengthAndStart) {
    const float factors[] = {0.0F, 1.0F, -1.0F, 0.1F, 0.33333334F, 1.0000001F, 1.7F, -3.3F, 1e-30F, 3e38F};
    const float limits[] = {1.0F, 0.5F, 0.7F, 7.0F, 0.0F, -0.5F, 0.123456F};
    unsigned seed = 0;
    for (const OSType format : {kSowtFormat, kTwosFormat}) {
        for (const std::size_t length : {0U, 1U, 2U, 7U, 8U, 9U, 15U, 16U, 17U, 31U, 33U, 1000U, 2047U}) {
            for (const float factor : factors) {
                const float limit = limits[seed % std::size(limits)];
                const double clamped = std::fmin(std::fmax(double{limit}, 0.0), 1.0);
                const std::vector<int> samples = RandomSamples(length, ++seed);
                std::vector<int> expected = samples;
                for (int& sample : expected) sample = Amplified(sample, factor, ToSingle(clamped * 32767.0));
                ASSERT_EQ(Amplify(samples, format, factor, limit, seed % 5), expected)
                    << length << " samples times " << factor << ", limit " << limit;
            }
        }
    }
}

TEST(AmplifySamples, FindsThePeakAnywhere) {
    for (const std::size_t length : {1U, 8U, 17U, 64U, 100U}) {
        for (std::size_t place = 0; place < length; ++place) {
            for (const int peak : {1000, -1000}) {
                std::vector<int> samples(length, -32768);
                samples[place] = peak;
                EXPECT_EQ(FindPeak(SamplesToBytes(samples, std::endian::big), std::endian::big), 1000);
                EXPECT_EQ(FindPeak(SamplesToBytes(samples, std::endian::little), std::endian::little), 1000);
            }
        }
    }
    EXPECT_EQ(FindPeak({}, std::endian::big), 0);
    // The lowest value has no magnitude in 16 bits.
    EXPECT_EQ(FindPeak(SamplesToBytes({-32768}, std::endian::big), std::endian::big), 0);
    EXPECT_EQ(NormalisingFactor(0), 1.0F);
}

TEST(AmplifySamples, CountsFramesByChannels) {
    const std::vector<int> ones(12, 1);
    const auto doubled = [&](std::uint32_t channels, std::size_t frames) {
        std::vector<std::byte> block = SamplesToBytes(ones, std::endian::little);
        EXPECT_EQ(AmplifyBlock(block, kSowtFormat, channels, frames, 2, 1), 0);
        const std::vector<int> samples = BytesToSamples(block, std::endian::little);
        return std::count(samples.begin(), samples.end(), 2);
    };
    EXPECT_EQ(doubled(2, 3), 6);
    EXPECT_EQ(doubled(6, 2), 2);
    EXPECT_EQ(doubled(2, 1000), 12);
}

TEST(AmplifySamples, RefusesOtherFormats) {
    std::vector<std::byte> block(8, std::byte{1});
    const std::vector<std::byte> before = block;
    EXPECT_EQ(AmplifyBlock(block, kRawFormat, 1, 4, 2, 1), -4);
    EXPECT_EQ(AmplifyBlock(block, kFloatFormat, 1, 2, 2, 1), -2001);
    EXPECT_EQ(block, before);
}

} // namespace
} // namespace corvane
