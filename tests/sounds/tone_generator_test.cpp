#include "sounds/tone_generator.h"

#include "sounds/sample_format.h"
#include "tests/sounds/samples.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cmath>
#include <numbers>

namespace corvane {
namespace {

constexpr std::uint16_t kStereo = kToneLeft | kToneRight | kToneSixteenBit;

ToneBlock Tone(const ToneRequest& request, double phase = 0) {
    GeneratedTone tone = GenerateToneBlock(request, phase);
    EXPECT_EQ(tone.code, 0);
    return std::move(tone.block);
}

std::vector<int> Values(const ToneBlock& block) {
    return BytesToSamples(block.samples, std::endian::big);
}

unsigned long Checksum(const ToneBlock& block) {
    return crc32(0, reinterpret_cast<const Bytef*>(block.samples.data()),
                 static_cast<uInt>(block.samples.size()));
}

// The checksums are those of a Python script that adds up the same steps: x += 6.2831854820251465 / 44100 and
// int(math.sin(x * f) * 32767.0), t += 1 / 44100 and math.fmod(t * f, 1.0) > 0.5, each value packed as ">h"
// twice.
TEST(ToneGenerator, AddsUpItsStepsAsStated) {
    const ToneBlock sine = Tone({.layout = kStereo | kToneSine});
    EXPECT_EQ(sine.format, kTwosFormat);
    EXPECT_EQ(sine.frames, 44100U);
    EXPECT_EQ(sine.channels, 2);
    EXPECT_EQ(sine.sample_bits, 16);
    EXPECT_EQ(Checksum(sine), 0x5DB79496U);

    const ToneBlock square = Tone({.duration = 0x8000,
                                   .frequency = static_cast<Fixed>(523.25 * 65536),
                                   .layout = kStereo | kToneSquare});
    EXPECT_EQ(square.frames, 22050U);
    EXPECT_EQ(Checksum(square), 0xE29A519CU);
}

TEST(ToneGenerator, SawtoothRampsOverWholeFrames) {
    const ToneBlock block =
        Tone({.duration = 0x20000, .frequency = 220 * 65536, .layout = kToneSixteenBit | kToneSawtooth});
    const std::vector<int> values = Values(block);
    ASSERT_EQ(values.size(), 88200U);
    for (std::size_t n = 0; n < values.size(); ++n) {
        // 44100 / 220 frames a period, of which 200 are used
        const auto numerator =
            static_cast<std::int64_t>(n % 200) * 220 * 65535 * 2 - std::int64_t{44100} * 65535;
        ASSERT_EQ(values[n], numerator / (2 * 44100)) << n;
    }
}

TEST(ToneGenerator, SawtoothAtItsLimits) {
    const std::uint16_t layout = kToneSixteenBit | kToneSawtooth;
    EXPECT_EQ(GenerateToneBlock({.frequency = 44100 << 15, .layout = layout}).code, 0);
    ToneRequest fast{.sample_rate = 1000U << 16, .frequency = 1000 * 65536, .layout = layout};
    for (const int value : Values(Tone(fast))) ASSERT_EQ(value, -32767);
    fast.frequency += 1;
    EXPECT_EQ(GenerateToneBlock(fast).code, kErrorWrongParameter);
    fast.frequency = -fast.frequency;
    EXPECT_EQ(GenerateToneBlock(fast).code, kErrorWrongParameter);

    for (const int value : Values(Tone({.frequency = 0, .layout = layout}))) ASSERT_EQ(value, -32767);
    const std::vector<int> falling = Values(Tone({.frequency = -441 * 65536, .layout = layout}));
    EXPECT_EQ(falling[0], -32767);
    for (std::size_t n = 2; n < 100; ++n) ASSERT_NEAR(falling[n - 1] - falling[n], 655, 1) << n;
}

TEST(ToneGenerator, NoiseRunsOnAndGoesOutLowByteFirst) {
    ResetNoise();
    // The well-known beginning of this generator: 41, 18467, 6334, 26500, 19169, 15724
    const ToneRequest request{.duration = 5, .layout = kStereo | kToneNoise}; // 3 frames
    EXPECT_EQ(BytesToSamples(Tone(request).samples, std::endian::little),
              (std::vector<int>{41, 18467, 6334, 26500, 19169, 15724}));
    const std::vector<int> next = BytesToSamples(Tone(request).samples, std::endian::little);
    EXPECT_EQ(next[0], 11478);

    ResetNoise();
    const ToneRequest right{.duration = 5, .layout = kToneRight | kToneSixteenBit | kToneNoise};
    EXPECT_EQ(BytesToSamples(Tone(right).samples, std::endian::little),
              (std::vector<int>{0, 41, 0, 18467, 0, 6334}));
}

TEST(ToneGenerator, LayoutsHoldTheSameSound) {
    for (const std::uint16_t wave : {kToneSilence, kToneSine, kToneSquare, kToneSawtooth}) {
        for (const int channels : {0, 1, 2, 3}) {
            const auto tone = [&](int size) {
                return Tone({.duration = 999, .layout = static_cast<std::uint16_t>(wave | channels | size)});
            };
            const ToneBlock sixteen = tone(kToneSixteenBit);
            const ToneBlock eight = tone(kToneEightBit);
            const ToneBlock floats = tone(kToneFloat);
            const std::vector<int> values = Values(sixteen);
            ASSERT_EQ(values.size(), 672U * (channels == 0 ? 1 : 2));
            ASSERT_EQ(eight.samples.size(), values.size());
            ASSERT_EQ(floats.samples.size(), 4 * values.size());
            EXPECT_EQ(eight.format, kRawFormat);
            EXPECT_EQ(floats.format, kFloatFormat);
            EXPECT_EQ(floats.sample_bits, 32);
            for (std::size_t i = 0; i < values.size(); ++i) {
                ASSERT_EQ(std::to_integer<int>(eight.samples[i]), (values[i] + 32768) / 256) << i;
                std::uint32_t bits = 0;
                for (std::size_t k = 0; k < 4; ++k)
                    bits = bits * 256 + std::to_integer<std::uint32_t>(floats.samples[4 * i + k]);
                ASSERT_EQ(std::bit_cast<float>(bits) * 32768.0F, static_cast<float>(values[i])) << i;
                const bool carries = channels == 0 || (channels >> (i % 2) & 1) != 0;
                ASSERT_TRUE(carries || values[i] == 0) << i;
            }
        }
    }
}

TEST(ToneGenerator, CarriesThePhaseOn) {
    const ToneBlock note = Tone({.duration = 10922, .frequency = 17145856, .layout = 0x110}, 0.25); // c4
    EXPECT_EQ(note.frames, 7349U); // of 7349.55
    EXPECT_NEAR(note.phase, 0.25 + 2 * std::numbers::pi * 7349 / 44100 * (17145856 / 65536.0), 1e-3);
    EXPECT_EQ(Tone({.layout = kStereo | kToneSilence}, 1.5).phase, 1.5);
    EXPECT_NEAR(Tone({.duration = 0x8000, .layout = kStereo | kToneSquare}, 0.5).phase, 220.5, 1e-6);
}

TEST(ToneGenerator, RefusesWhatItCanNotMake) {
    EXPECT_EQ(GenerateToneBlock({.duration = -1}).code, kErrorWrongParameter);
    EXPECT_EQ(GenerateToneBlock({.layout = 0x513}).code, kErrorWrongParameter);
    EXPECT_EQ(GenerateToneBlock({.layout = 0x133}).code, kErrorWrongParameter);
    EXPECT_EQ(GenerateToneBlock({.duration = 0x7FFFFFFF}).code, kErrorOutOfMemory);
    EXPECT_EQ(Tone({.duration = 1}).frames, 0U);
    EXPECT_EQ(Tone({.sample_rate = 0}).frames, 0U);
}

} // namespace
} // namespace corvane
