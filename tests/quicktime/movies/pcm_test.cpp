#include "platform/quicktime/movies/pcm.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace {

using qt::PcmLayout;
using qt::SampleEncoding;

PcmLayout Layout(SampleEncoding encoding, bool big_endian = false) {
    return {encoding, big_endian, 1, 44100};
}

std::vector<float> Decode(const PcmLayout& layout, std::initializer_list<int> bytes) {
    std::vector<std::byte> data;
    for (const int byte : bytes) data.push_back(static_cast<std::byte>(byte));
    std::vector<float> samples(data.size() / layout.SampleBytes());
    qt::SamplesToFloat(layout, data, samples);
    return samples;
}

TEST(Pcm, EveryEncodingComesThroughExactly) {
    EXPECT_EQ(Decode(Layout(SampleEncoding::kUnsigned8), {0, 128, 255}),
              (std::vector<float>{-1, 0, 127 / 128.0F}));
    EXPECT_EQ(Decode(Layout(SampleEncoding::kSigned8), {0x80, 0, 0x7F}),
              (std::vector<float>{-1, 0, 127 / 128.0F}));
    EXPECT_EQ(Decode(Layout(SampleEncoding::kSigned16), {0, 0x80, 0x34, 0x12}),
              (std::vector<float>{-1, 0x1234 / 32768.0F}));
    EXPECT_EQ(Decode(Layout(SampleEncoding::kSigned16, true), {0x12, 0x34}),
              std::vector<float>{0x1234 / 32768.0F});
    EXPECT_EQ(Decode(Layout(SampleEncoding::kSigned24), {0x56, 0x34, 0x92}),
              std::vector<float>{(0x923456 - 0x1000000) / 8388608.0F});
    EXPECT_EQ(Decode(Layout(SampleEncoding::kSigned24, true), {0x12, 0x34, 0x56}),
              std::vector<float>{0x123456 / 8388608.0F});
    EXPECT_EQ(Decode(Layout(SampleEncoding::kSigned32, true), {0xC0, 0, 0, 0}), std::vector<float>{-0.5F});
    EXPECT_EQ(Decode(Layout(SampleEncoding::kFloat32, true), {0x3E, 0x80, 0, 0}), std::vector<float>{0.25F});
    EXPECT_EQ(Decode(Layout(SampleEncoding::kFloat64), {0, 0, 0, 0, 0, 0, 0xE0, 0xBF}),
              std::vector<float>{-0.5F});
    // From the tables of G.711: the loudest, the softest and a middle code of either sign.
    EXPECT_EQ(Decode(Layout(SampleEncoding::kMuLaw), {0x00, 0x7F, 0xFF, 0x80, 0xC5}),
              (std::vector<float>{-32124 / 32768.0F, 0, 0, 32124 / 32768.0F, 1564 / 32768.0F}));
    EXPECT_EQ(Decode(Layout(SampleEncoding::kALaw), {0x2A, 0xAA, 0x55, 0xD5, 0x80}),
              (std::vector<float>{-32256 / 32768.0F, 32256 / 32768.0F, -8 / 32768.0F, 8 / 32768.0F,
                                  5504 / 32768.0F}));
}

TEST(Pcm, FloatsAreRoundedAndLimited) {
    const std::array<float, 10> values = {2,
                                          -2,
                                          1,
                                          -1,
                                          0.5F / 32768,
                                          1.5F / 32768,
                                          -0.5F / 32768,
                                          -2.6F / 32768,
                                          std::numeric_limits<float>::infinity(),
                                          1e30F};
    std::array<std::byte, 20> bytes{};
    ASSERT_TRUE(qt::SamplesFromFloat(Layout(SampleEncoding::kSigned16), values, bytes));
    const std::array<int, 10> expected = {32767, -32768, 32767, -32768, 0, 2, 0, -3, 32767, 32767};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const int sample = std::to_integer<int>(bytes[2 * i]) | std::to_integer<int>(bytes[2 * i + 1]) << 8;
        EXPECT_EQ(static_cast<std::int16_t>(sample), expected[i]) << i;
    }
    const std::array<float, 1> nan = {std::nanf("")};
    std::array<std::byte, 8> any{};
    for (const auto encoding : {SampleEncoding::kUnsigned8, SampleEncoding::kSigned16,
                                SampleEncoding::kSigned24, SampleEncoding::kSigned32})
        EXPECT_TRUE(qt::SamplesFromFloat(Layout(encoding), nan, any));
    EXPECT_FALSE(qt::SamplesFromFloat(Layout(SampleEncoding::kMuLaw), nan, any));
    EXPECT_FALSE(qt::SamplesFromFloat(Layout(SampleEncoding::kSigned16), values, std::span(bytes).first(19)));
}

TEST(Pcm, IntegersSurviveTheWayThroughFloats) {
    for (const bool big_endian : {false, true}) {
        for (const auto encoding : {SampleEncoding::kUnsigned8, SampleEncoding::kSigned8,
                                    SampleEncoding::kSigned16, SampleEncoding::kSigned24}) {
            const PcmLayout layout = Layout(encoding, big_endian);
            std::vector<std::byte> bytes(65536 * layout.SampleBytes());
            for (std::size_t i = 0; i < bytes.size(); ++i)
                bytes[i] = static_cast<std::byte>(i * 2654435761U >> 13);
            std::vector<float> samples(65536);
            qt::SamplesToFloat(layout, bytes, samples);
            std::vector<std::byte> again(bytes.size());
            ASSERT_TRUE(qt::SamplesFromFloat(layout, samples, again));
            EXPECT_EQ(again, bytes) << static_cast<int>(encoding) << big_endian;
        }
    }
}

TEST(Pcm, ChannelsAreMappedWithoutGain) {
    const auto map = [](std::vector<float> in, std::uint32_t from, std::uint32_t to) {
        std::vector<float> out(in.size() / from * to);
        qt::MapChannels(in, from, out, to);
        return out;
    };
    EXPECT_EQ(map({0.25F, -1}, 1, 2), (std::vector<float>{0.25F, 0.25F, -1, -1}));
    EXPECT_EQ(map({0.5F, -0.25F}, 2, 1), std::vector<float>{0.125F});
    EXPECT_EQ(map({1, 2, 3, 4}, 2, 4), (std::vector<float>{1, 2, 0, 0, 3, 4, 0, 0}));
    for (std::uint32_t channels = 3; channels <= 8; ++channels) {
        const std::vector<float> stereo = map(std::vector<float>(channels, 1.0F), channels, 2);
        EXPECT_NEAR(stereo[0], 1, 1e-6) << channels; // full scale everywhere stays full scale
        EXPECT_NEAR(stereo[1], 1, 1e-6) << channels;
        std::vector<float> left(channels, 0.0F);
        left[0] = 1;
        EXPECT_GT(map(left, channels, 2)[0], 0.25F);
        EXPECT_EQ(map(left, channels, 2)[1], 0);
    }
}

} // namespace
