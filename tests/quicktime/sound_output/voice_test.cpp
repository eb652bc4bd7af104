#include "platform/quicktime/sound_output/voice.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <thread>

namespace qt {
namespace {

constexpr std::size_t kRamp = kRampFrames;

std::vector<StereoFrame> Ramp(std::size_t count) {
    std::vector<StereoFrame> frames(count);
    for (std::size_t i = 0; i < count; ++i) frames[i] = {static_cast<float>(i), -static_cast<float>(i)};
    return frames;
}

std::vector<StereoFrame> Sine(std::size_t count, double cycles_per_frame) {
    std::vector<StereoFrame> frames(count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto value =
            static_cast<float>(std::sin(2 * std::numbers::pi * cycles_per_frame * static_cast<double>(i)));
        frames[i] = {value, value};
    }
    return frames;
}

void Play(Voice& voice, VoiceSettings settings, double step = 1) {
    settings.playing = true;
    voice.Set(settings, std::make_shared<RateFilter>(step));
}

// Blocks of odd sizes, as devices ask for them.
std::vector<StereoFrame> Mix(Voice& voice, std::size_t count) {
    std::vector<StereoFrame> mix(count);
    for (std::size_t at = 0; at < count; at += 77)
        voice.Mix(std::span(mix).subspan(at, std::min<std::size_t>(77, count - at)));
    return mix;
}

TEST(FrameRing, HandsFramesFromThreadToThread) {
    FrameRing ring(1000);
    EXPECT_EQ(ring.Room(), 1024U);
    constexpr std::size_t kCount = 30'000;
    std::jthread producer([&] {
        const auto frames = Ramp(kCount);
        for (std::size_t at = 0; at < kCount;) {
            const std::size_t part = std::min({ring.Room(), kCount - at, at % 300 + 1});
            ring.Push(std::span(frames).subspan(at, part));
            at += part;
        }
    });
    for (std::size_t i = 0; i < kCount; ++i) {
        while (ring.Available() == 0) std::this_thread::yield();
        ASSERT_EQ(ring.Pop().left, static_cast<float>(i));
    }
    EXPECT_EQ(ring.Available(), 0U);
}

TEST(Voice, PlaysEveryFrameAndStartsAndEndsGently) {
    Voice voice(1000);
    const auto frames = Ramp(700);
    voice.Queue().Push(frames);
    voice.EndQueue();
    Play(voice, {});
    const auto mix = Mix(voice, 800);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const std::size_t edge = std::min(i + 1, frames.size() - i);
        const float gain = std::min(1.0F, static_cast<float>(edge) / kRamp);
        ASSERT_FLOAT_EQ(mix[i].left, frames[i].left * gain) << i;
        ASSERT_FLOAT_EQ(mix[i].right, frames[i].right * gain) << i;
    }
    for (std::size_t i = frames.size(); i < mix.size(); ++i) ASSERT_EQ(mix[i].left, 0) << i;
    EXPECT_TRUE(voice.IsFinished());
    EXPECT_EQ(voice.Position(), 700);
}

TEST(Voice, WaitsForFramesAndGoesOnWhereItStoppedWithoutAStep) {
    Voice voice(2000);
    std::vector<StereoFrame> frames = Ramp(1000);
    for (StereoFrame& frame : frames) frame.left = 1;
    voice.Queue().Push(std::span(frames).first(500));
    Play(voice, {});
    auto mix = Mix(voice, 600);
    EXPECT_EQ(mix[599].left, 0);
    EXPECT_FALSE(voice.IsFinished());
    const auto played = voice.Position();
    EXPECT_EQ(played, 500 - static_cast<std::int64_t>(RateConverter::kDelay));
    EXPECT_EQ(mix[250].left, 1);
    voice.Queue().Push(std::span(frames).subspan(500));
    std::ranges::copy(Mix(voice, 300), std::back_inserter(mix));
    EXPECT_FLOAT_EQ(mix[600].right, -static_cast<float>(played) / kRamp)
        << "the next frame, in the ramp's first step";
    EXPECT_EQ(mix[600 + kRamp].left, 1);
    EXPECT_EQ(mix[600 + kRamp].right, -static_cast<float>(played) - kRamp);
    for (std::size_t i = 1; i < mix.size(); ++i)
        ASSERT_LE(std::abs(mix[i].left - mix[i - 1].left), 1.01F / kRamp) << i;
}

TEST(Voice, PausesInPlace) {
    Voice voice(2000);
    const auto frames = Ramp(2000);
    voice.Queue().Push(frames);
    Play(voice, {});
    Mix(voice, 500);
    voice.Set({}, std::make_shared<RateFilter>(1)); // not playing
    const auto fading = Mix(voice, 300);
    for (std::size_t i = 0; i < kRamp; ++i)
        ASSERT_FLOAT_EQ(fading[i].left,
                        (500 + static_cast<float>(i)) * (1 - (static_cast<float>(i) + 1) / kRamp));
    EXPECT_EQ(fading[kRamp].left, 0);
    Play(voice, {});
    const auto resumed = Mix(voice, 300);
    EXPECT_FLOAT_EQ(resumed[kRamp].left, 500 + 2 * kRamp) << "nothing but the ramps lies between";
}

TEST(Voice, ThatEndsFadesOutEvenWithNothingQueued) {
    Voice voice(1000);
    voice.Queue().Push(Ramp(500));
    Play(voice, {});
    Mix(voice, 200);
    voice.Set({.playing = true, .ending = true}, std::make_shared<RateFilter>(1));
    const auto mix = Mix(voice, 200);
    EXPECT_GT(mix[kRamp / 2].left, 50);
    EXPECT_EQ(mix[kRamp].left, 0);
    EXPECT_TRUE(voice.IsFinished());

    Voice starved(1000);
    starved.Queue().Push(Ramp(100));
    Play(starved, {});
    Mix(starved, 200);
    starved.Set({.playing = true, .ending = true}, std::make_shared<RateFilter>(1));
    Mix(starved, 1);
    EXPECT_TRUE(starved.IsFinished());
}

TEST(Voice, ChangesItsGainsInARamp) {
    Voice voice(1000);
    voice.Queue().Push(std::vector<StereoFrame>(1000, {1, 1}));
    Play(voice, {.left = 0.5F});
    auto mix = Mix(voice, 300);
    EXPECT_EQ(mix[299].left, 0.5F) << "the first gains need no way to them";
    EXPECT_EQ(mix[299].right, 1);
    Play(voice, {.left = 0.25F, .right = 0});
    mix = Mix(voice, 300);
    for (std::size_t i = 1; i < 300; ++i) {
        ASSERT_LE(std::abs(mix[i].left - mix[i - 1].left), 0.25F / kRamp * 1.01F) << i;
        ASSERT_LE(std::abs(mix[i].right - mix[i - 1].right), 1.0F / kRamp * 1.01F) << i;
    }
    EXPECT_EQ(mix[299].left, 0.25F);
    EXPECT_EQ(mix[299].right, 0);
}

// The signal that a sine becomes at another step, and what of a tone above half the new rate comes through.
TEST(Voice, ChangesPitchWithTheRate) {
    for (const double step : {0.3, 0.5, 1.25, 2.0, 3.7}) {
        constexpr double kTone = 0.01;
        Voice voice(8000);
        voice.Queue().Push(Sine(8000, kTone));
        voice.EndQueue();
        Play(voice, {}, step);
        const auto length = static_cast<std::size_t>(std::ceil(8000 / step));
        const auto mix = Mix(voice, length + 10);
        double worst = 0;
        for (std::size_t i = kRamp; i + kRamp + 20 < length; ++i) {
            const double wanted = std::sin(2 * std::numbers::pi * kTone * step * static_cast<double>(i));
            worst = std::max(worst, std::abs(mix[i].left - wanted));
        }
        EXPECT_LT(worst, 2e-3) << step;
        EXPECT_TRUE(voice.IsFinished()) << step;
        EXPECT_EQ(mix[length].left, 0) << step;
    }
    Voice voice(8000);
    voice.Queue().Push(Sine(8000, 0.45));
    Play(voice, {}, 2);
    float loudest = 0;
    const auto mix = Mix(voice, 1000);
    for (const StereoFrame& frame : std::span(mix).subspan(kRamp))
        loudest = std::max(loudest, std::abs(frame.left));
    EXPECT_LT(loudest, 0.01F) << "it would come back as another tone";
}

} // namespace
} // namespace qt
