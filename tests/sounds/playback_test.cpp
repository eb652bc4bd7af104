// Playing through the driver that writes what it gets into a file, in real time.
#include "platform/quicktime/sound_output/voice.h"
#include "tests/plugin/started_host.h"
#include "tests/support/environment_variable.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstring>
#include <numbers>
#include <random>
#include <sys/resource.h>
#include <thread>

namespace corvane {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using Frames = std::vector<qt::StereoFrame>;

constexpr std::int16_t kPlaySound = 2;
constexpr std::int16_t kStopSound = 14;
constexpr std::int16_t kGet = 21;
constexpr std::int16_t kSet = 23;
constexpr std::int16_t kPlayPause = 25;
constexpr std::size_t kRamp = qt::kRampFrames;
constexpr std::size_t kRate = 44'100;

Frames Noise(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    const auto sample = [&] {
        return static_cast<float>(static_cast<int>(random() % 32768) - 16384) / 32768;
    };
    Frames frames(count);
    for (auto& frame : frames) frame = {sample(), sample()};
    return frames;
}

Frames Sine(std::size_t count, double hertz) {
    Frames frames(count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto value = static_cast<float>(
            std::lround(16384 * std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / kRate)));
        frames[i] = {value / 32768, value / 32768};
    }
    return frames;
}

bool Same(const qt::StereoFrame& a, const qt::StereoFrame& b, float tolerance = 1e-6F) {
    return std::abs(a.left - b.left) <= tolerance && std::abs(a.right - b.right) <= tolerance;
}

struct Playback : testing::Test {
    Playback() {
        fm::CurrentSession().drives = {{"C:", ""}};
        host.file_path = u"file:/C:/Untitled.fp7";
    }

    static FM_Data Text(const std::string& text) { return test::TextValue(text); }

    /// A WAVE file with these frames, as 16-bit samples.
    FM_Data Wave(const std::string& name, const Frames& frames) const {
        std::string samples;
        for (const auto& frame : frames)
            for (const float value : {frame.left, frame.right}) {
                const auto sample = static_cast<std::int16_t>(value * 32768);
                samples.append(reinterpret_cast<const char*>(&sample), 2);
            }
        const auto number = [](std::uint32_t value) {
            return std::string(reinterpret_cast<const char*>(&value), 4);
        };
        const std::string format =
            number(0x00020001) + number(kRate) + number(kRate * 4) + number(0x00100004);
        test::WriteBytes(folder + "/" + name,
                         "RIFF" + number(36 + static_cast<std::uint32_t>(samples.size())) + "WAVEfmt " +
                             number(16) + format + "data" +
                             number(static_cast<std::uint32_t>(samples.size())) + samples);
        return Text("/C:" + folder + "/" + name);
    }

    std::string Run(std::int16_t id, std::initializer_list<FM_Data> values) {
        return host.CallFunction(id, values).text;
    }
    std::string PlayStatus() { return Run(kGet, {Text("playstatus")}); }
    void Set(const std::string& tag, const std::string& value) {
        EXPECT_EQ(Run(kSet, {Text(tag), Text(value)}), "");
    }

    static void Pump(milliseconds length) {
        const auto end = Clock::now() + length;
        while (Clock::now() < end) {
            if (fm::CurrentSession().dispatch_messages) fm::CurrentSession().dispatch_messages();
            std::this_thread::sleep_for(std::min<Clock::duration>(milliseconds(10), end - Clock::now()));
        }
    }
    /// Pumps now and then, until no message can come any more: everything has been played and let go.
    static void PumpIrregularly() {
        std::mt19937 random(5);
        const auto limit = Clock::now() + std::chrono::seconds(20);
        while (fm::CurrentSession().dispatch_messages && Clock::now() < limit) {
            std::this_thread::sleep_for(milliseconds(random() % 200));
            if (fm::CurrentSession().dispatch_messages) fm::CurrentSession().dispatch_messages();
        }
        EXPECT_FALSE(fm::CurrentSession().dispatch_messages);
    }

    /// What the driver got, once the plug-in has stopped.
    Frames Captured() {
        host.Send(kFM_CallShutdown);
        const std::string bytes = test::ReadBytes(capture);
        Frames frames(bytes.size() / sizeof(qt::StereoFrame));
        std::memcpy(frames.data(), bytes.data(), frames.size() * sizeof(qt::StereoFrame));
        host.StartUp();
        return frames;
    }
    /// Where in the capture the sound begins, found by its frames from `from` on; behind its end when it
    /// isn't there.
    static std::size_t Find(const Frames& captured, const Frames& sound, std::size_t from) {
        for (std::size_t at = from; at + 8 < captured.size(); ++at) {
            std::size_t same = 0;
            while (same < 8 && Same(captured[at + same], sound[from + same])) ++same;
            if (same == 8) return at - from;
        }
        return captured.size();
    }
    /// Checks that the capture has this sound once, whole but for its ramps, between silence.
    static void ExpectOnly(const Frames& captured, const Frames& sound) {
        const std::size_t start = Find(captured, sound, kRamp);
        ASSERT_LE(start + sound.size(), captured.size()) << "the sound is not there";
        for (std::size_t i = 0; i < captured.size(); ++i) {
            if (i < start || i >= start + sound.size()) {
                ASSERT_TRUE(Same(captured[i], {})) << i << " of " << start;
            } else if (i >= start + kRamp && i + kRamp < start + sound.size()) {
                ASSERT_TRUE(Same(captured[i], sound[i - start])) << i << " of " << start;
            }
        }
    }

    test::ScratchDrives scratch; // only its folder is of use: the host's drive C: is the whole machine
    std::string folder = scratch.MakeFolder("work");
    std::string capture = folder + "/capture.raw";
    test::EnvironmentVariable driver{"SDL_AUDIODRIVER", "disk"};
    test::EnvironmentVariable file{"SDL_DISKAUDIOFILE", capture};
    test::StartedHost host;
};

TEST_F(Playback, GivesTheDeviceEverySampleWhileTheCallWaits) {
    const Frames sound = Noise(kRate / 2, 1);
    const auto begin = Clock::now();
    EXPECT_EQ(Run(kPlaySound, {Wave("s.wav", sound)}), "$0:Media_PlaySound: No error.");
    EXPECT_GE(Clock::now() - begin, milliseconds(450));
    EXPECT_EQ(PlayStatus(), "0");
    ExpectOnly(Captured(), sound);
}

TEST_F(Playback, DropsNothingWhileTheHostPumpsNowAndThen) {
    const Frames sound = Noise(2 * kRate, 2);
    EXPECT_EQ(Run(kPlaySound, {Wave("s.wav", sound), Text("1")}), "$0:Media_PlaySound: No error.");
    EXPECT_EQ(PlayStatus(), "1");
    PumpIrregularly();
    EXPECT_EQ(PlayStatus(), "0");
    ExpectOnly(Captured(), sound);
}

TEST_F(Playback, PlaysTheSelection) {
    const Frames sound = Noise(kRate, 3);
    const FM_Data wave = Wave("s.wav", sound);
    const auto part = [&](std::size_t from, std::size_t to) {
        return Frames(sound.begin() + static_cast<std::ptrdiff_t>(from),
                      sound.begin() + static_cast<std::ptrdiff_t>(to));
    };
    Run(kPlaySound, {wave, Text("no"), Text("0:0:0.5"), Text("0:0:0.25")});
    ExpectOnly(Captured(), part(kRate / 4, kRate / 2));
    Run(kPlaySound, {wave, Text("no"), Text("0:0:0.75"), Text("0:1:0")});
    ExpectOnly(Captured(), part(3 * kRate / 4, kRate));
    EXPECT_EQ(Run(kPlaySound, {wave, Text("no"), Text("0:0:2"), Text("0:0:3")}),
              "$-2014:Media_PlaySound: The duration used is invalid. Error making sound selection.");
}

TEST_F(Playback, FollowsVolumeAndBalance) {
    const Frames sound = Noise(kRate / 4, 4);
    Frames expected = sound;
    for (auto& frame : expected) frame = {frame.left * 0.5F, frame.right * 0.125F};
    Set("volume", "0.5");
    Set("balance", "-0.75");
    Run(kPlaySound, {Wave("s.wav", sound)});
    ExpectOnly(Captured(), expected);
    Set("volume", "-1");
    Run(kPlaySound, {Wave("s.wav", sound)});
    for (const auto& frame : Captured()) ASSERT_TRUE(Same(frame, {}));
}

TEST_F(Playback, FollowsTempoWithItsPitch) {
    const Frames sound = Sine(kRate / 2, 440);
    struct Example {
        const char* tempo;
        double hertz;
    };
    for (const Example& example : {Example{"2", 880}, Example{"0.5", 220}}) {
        Set("tempo", example.tempo);
        Run(kPlaySound, {Wave("s.wav", sound)});
        const Frames captured = Captured();
        const auto loud = [](const auto& frame) { return !Same(frame, {}); };
        const auto first = std::find_if(captured.begin(), captured.end(), loud);
        const auto last = std::find_if(captured.rbegin(), captured.rend(), loud).base();
        const auto length = static_cast<double>(last - first);
        EXPECT_NEAR(length, kRate / 2 * 440 / example.hertz, 3) << example.tempo;
        // Whether the sine's first frame, which is next to 0, was among the loud ones is not known.
        const auto deviation = [&](std::size_t skipped) {
            double worst = 0;
            for (std::size_t i = kRamp; i + kRamp < static_cast<std::size_t>(length); ++i) {
                const double phase =
                    2 * std::numbers::pi * example.hertz * static_cast<double>(i + skipped) / kRate;
                worst = std::max(
                    worst, std::abs(first[static_cast<std::ptrdiff_t>(i)].left - 0.5 * std::sin(phase)));
            }
            return worst;
        };
        const double worst = std::min(deviation(0), deviation(1));
        EXPECT_LT(worst, 0.002) << example.tempo;
        host.Send(kFM_CallShutdown);
        host.StartUp();
    }
}

TEST_F(Playback, EndsAtATempoThatNeverCouldEnd) {
    const FM_Data wave = Wave("s.wav", Noise(10 * kRate, 11));
    const auto begin = Clock::now();
    Run(kPlaySound, {wave, Text("1")});
    for (const char* tempo : {"0", "-1"}) {
        Set("tempo", tempo);
        EXPECT_EQ(Run(kPlaySound, {wave}), "$0:Media_PlaySound: No error.");
        EXPECT_EQ(PlayStatus(), "0");
    }
    PumpIrregularly();
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(8)) << "the one in the background, too";
}

// A hundred times what it takes: only waiting that is none is found.
TEST_F(Playback, LeavesTheProcessorToOthers) {
    const FM_Data wave = Wave("s.wav", Noise(3 * kRate, 12));
    const std::string play = CORVANE_PROGRAM " eval --strict 'Media_PlaySound ( \"/C:" + folder +
                             "/s.wav\" ; True )' 'HostPump ( 2.5 )' >/dev/null";
    rusage before{};
    rusage after{};
    getrusage(RUSAGE_CHILDREN, &before);
    ASSERT_EQ(std::system(play.c_str()), 0);
    getrusage(RUSAGE_CHILDREN, &after);
    const auto seconds = [](const rusage& usage) {
        return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
               static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
    };
    EXPECT_LT(seconds(after) - seconds(before), 1.5);
}

TEST_F(Playback, PausesAndResumesInPlace) {
    const Frames sound = Noise(kRate, 6);
    Run(kPlaySound, {Wave("s.wav", sound), Text("1")});
    Pump(milliseconds(300));
    EXPECT_EQ(Run(kPlayPause, {}), "$0:Media_PlayPause: No error.");
    EXPECT_EQ(PlayStatus(), "0");
    Pump(milliseconds(200));
    EXPECT_EQ(Run(kPlayPause, {Text("0")}), "$0:Media_PlayPause: No error.");
    EXPECT_EQ(PlayStatus(), "1");
    PumpIrregularly();
    const Frames captured = Captured();
    const std::size_t start = Find(captured, sound, kRamp);
    ASSERT_LT(start, captured.size());
    std::size_t stop = kRamp;
    while (Same(captured[start + stop], sound[stop])) ++stop;
    std::size_t pause = start + stop + kRamp;
    EXPECT_TRUE(Same(captured[pause], {}));
    while (pause < captured.size() && Same(captured[pause], {})) ++pause;
    EXPECT_GT(pause, start + stop + kRate / 10);
    const std::size_t shift = pause - kRamp - stop; // of what comes behind the pause
    for (std::size_t i = stop + 2 * kRamp; i + kRamp < sound.size(); ++i) {
        const std::size_t best = Find(captured, sound, i);
        EXPECT_NEAR(static_cast<double>(best), static_cast<double>(shift), 2)
            << "frames were lost or came twice";
        for (; i + kRamp < sound.size(); ++i) ASSERT_TRUE(Same(captured[best + i], sound[i])) << i;
    }
}

TEST_F(Playback, MixesAndStopsWithoutClicks) {
    const Frames level(kRate, {0.25F, -0.25F});
    Run(kPlaySound, {Wave("a.wav", level), Text("1")});
    Pump(milliseconds(100));
    Run(kPlaySound, {Wave("b.wav", level), Text("1")});
    Pump(milliseconds(100));
    Run(kPlayPause, {});
    Pump(milliseconds(100));
    Run(kPlayPause, {});
    Pump(milliseconds(100));
    Set("volume", "0.5");
    Pump(milliseconds(100));
    EXPECT_EQ(Run(kStopSound, {}), "$0:Media_StopSound: No error.");
    EXPECT_EQ(PlayStatus(), "0");
    Pump(milliseconds(100));
    EXPECT_FALSE(fm::CurrentSession().dispatch_messages) << "the timer is gone";
    const Frames captured = Captured();
    float loudest = 0;
    for (std::size_t i = 1; i < captured.size(); ++i) {
        loudest = std::max(loudest, captured[i].left);
        ASSERT_LE(std::abs(captured[i].left - captured[i - 1].left), 0.5F / kRamp * 1.01F) << i;
        ASSERT_EQ(captured[i].left, -captured[i].right) << i;
    }
    EXPECT_EQ(loudest, 0.5F);
    EXPECT_TRUE(Same(captured.back(), {}));
}

TEST_F(Playback, OtherRatesAndChannels) {
    const std::string make = "cd '" + folder +
                             "' && sox -n -r 22050 -c 1 -b 8 mono.wav synth 0.3 sine 1000 vol 0.5 && "
                             "sox -n -r 48000 -c 2 high.flac synth 0.3 sine 1000 vol 0.5";
    ASSERT_EQ(std::system(make.c_str()), 0);
    for (const char* name : {"mono.wav", "high.flac"}) {
        EXPECT_EQ(Run(kPlaySound, {Text("/C:" + folder + "/" + name)}), "$0:Media_PlaySound: No error.");
        const Frames captured = Captured();
        std::size_t crossings = 0;
        float loudest = 0;
        for (std::size_t i = 1; i < captured.size(); ++i) {
            crossings += captured[i - 1].left < 0 && captured[i].left >= 0 ? 1U : 0U;
            loudest = std::max(loudest, captured[i].right);
        }
        EXPECT_NEAR(static_cast<double>(crossings), 300, 2) << name;
        EXPECT_NEAR(loudest, 0.5F, 0.015F) << name << ", 8 bits with dither";
    }
}

TEST_F(Playback, StopsAtTheAbortKeys) {
    const FM_Data wave = Wave("s.wav", Noise(10 * kRate, 7));
    for (const char* key : {"escape", "command+period"}) {
        fm::CurrentSession().input = {{Clock::now() + milliseconds(50), key}};
        const auto begin = Clock::now();
        EXPECT_EQ(Run(kPlaySound, {wave}),
                  "$-128:Media_PlaySound: Operation canceled by the user. Error playing sound.");
        EXPECT_LT(Clock::now() - begin, std::chrono::seconds(5));
        EXPECT_TRUE(fm::CurrentSession().input.empty()) << "nobody else is to see the key";
    }
}

TEST_F(Playback, EndsWithTheHost) {
    const Frames sound = Noise(2 * kRate, 8);
    Run(kPlaySound, {Wave("s.wav", sound), Text("1")});
    Pump(milliseconds(100));
    const Frames captured = Captured();
    EXPECT_LT(captured.size(), sound.size());
    EXPECT_FALSE(fm::CurrentSession().dispatch_messages);
    EXPECT_EQ(PlayStatus(), "0");
}

TEST_F(Playback, TellsWhatFails) {
    const auto play = [&](std::initializer_list<FM_Data> values) {
        const test::Outcome outcome = host.CallFunction(kPlaySound, values);
        EXPECT_TRUE(outcome.text.starts_with("$" + std::to_string(outcome.error) + ":")) << outcome.text;
        return outcome.text;
    };
    const FM_Data wave = Wave("s.wav", Noise(100, 9));
    EXPECT_EQ(play({}),
              "$-50:Media_PlaySound: Wrong parameter(s). This function requires 1 to 4 parameters.");
    EXPECT_EQ(play({wave, wave, wave, wave, wave}),
              "$-50:Media_PlaySound: Wrong parameter(s). This function requires 1 to 4 parameters.");
    FM_Data empty;
    empty.SetContainer({});
    EXPECT_EQ(play({empty}),
              "$-50:Media_PlaySound: Wrong parameter(s). The container in argument #1 seems to be empty.");
    EXPECT_EQ(play({Text("none.wav")}),
              "$-50:Media_PlaySound: Wrong parameter(s). Could not get parameter #1 as sound.");
    EXPECT_EQ(play({wave, Text("1"), Text("x")}),
              "$-50:Media_PlaySound: Wrong parameter(s). Could not get parameter #3 as time.");
    EXPECT_EQ(play({wave, Text("1"), Text("0:0:0"), Text("x")}),
              "$-50:Media_PlaySound: Wrong parameter(s). Could not get parameter #4 as time.");
    EXPECT_EQ(Run(kPlayPause, {wave, wave}),
              "$-50:Media_PlayPause: Wrong parameter(s). This function requires 0 or 1 parameter.");
    driver.Set("none such");
    EXPECT_EQ(play({wave}),
              "$-200:Media_PlaySound: The required sound hardware is missing. Error playing sound.");
    EXPECT_EQ(play({wave, Text("1")}), "$-200:Media_PlaySound: The required sound hardware is missing. "
                                       "Error adding sound to the asynchronous pool.");
    EXPECT_EQ(PlayStatus(), "0");
}

TEST_F(Playback, KeepsTimeWithoutADevice) {
    driver.Set(std::nullopt);
    const auto begin = Clock::now();
    EXPECT_EQ(Run(kPlaySound, {Wave("s.wav", Noise(kRate / 2, 10))}), "$0:Media_PlaySound: No error.");
    EXPECT_GE(Clock::now() - begin, milliseconds(400));
}

} // namespace
} // namespace corvane
