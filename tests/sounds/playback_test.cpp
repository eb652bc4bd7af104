// Playing through the driver that writes what it gets into a file, in real time.
#include "platform/quicktime/sound_output/voice.h"
#include "tests/sounds/sound_session.h"

#include <cmath>
#include <filesystem>
#include <random>
#include <sys/resource.h>

namespace corvane {
namespace {

using Frames = std::vector<qt::StereoFrame>;

constexpr std::int16_t kPlaySound = 2;
constexpr std::int16_t kStopSound = 14;
constexpr std::int16_t kPlayPause = 25;
constexpr std::size_t kRamp = qt::kRampFrames;
constexpr std::size_t kRate = 44'100;

/// In the steps of 16-bit samples.
Frames Noise(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    const auto sample = [&] {
        return static_cast<float>(static_cast<int>(random() % 32768) - 16384) / 32768;
    };
    Frames frames(count);
    for (auto& frame : frames) frame = {sample(), sample()};
    return frames;
}

bool Same(const qt::StereoFrame& a, const qt::StereoFrame& b) {
    return std::abs(a.left - b.left) <= 1e-6F && std::abs(a.right - b.right) <= 1e-6F;
}

bool IsSilent(const qt::StereoFrame& frame) {
    return Same(frame, {});
}

struct Playback : SoundSession {
    /// A WAVE file with these frames, as 16-bit samples.
    FM_Data Wave(const Frames& frames, const std::string& name = "s.wav") const {
        const auto* bytes = reinterpret_cast<const char*>(frames.data());
        test::WriteBytes(folder + "/frames", {bytes, frames.size() * sizeof(qt::StereoFrame)});
        Shell("sox -D -t f32 -r 44100 -c 2 frames -b 16 " + name);
        return File(name);
    }

    std::string PlayStatus() { return Get("playstatus"); }
    void Play(std::initializer_list<FM_Data> values) {
        EXPECT_EQ(Run(kPlaySound, values), "$0:Media_PlaySound: No error.");
    }
    void PlayPause(std::initializer_list<FM_Data> values = {}) {
        EXPECT_EQ(Run(kPlayPause, values), "$0:Media_PlayPause: No error.");
    }

    /// Until the driver has got so many frames more, which can take it long on a busy machine.
    void PumpFrames(std::size_t count) const {
        const auto written = [&] { return std::filesystem::file_size(capture) / sizeof(qt::StereoFrame); };
        EXPECT_TRUE(PumpUntil([&, end = written() + count] { return written() >= end; }));
    }
    /// Pumps now and then, until no message can come any more: everything has been played and let go.
    static void PumpIrregularly() {
        std::mt19937 random(5);
        EXPECT_TRUE(PumpUntil([&] {
            std::this_thread::sleep_for(milliseconds(random() % 200));
            return !fm::CurrentSession().dispatch_messages;
        }));
    }

    /// What the driver got, once the plug-in has stopped.
    Frames Captured() {
        host.Send(kFM_CallShutdown);
        Frames frames = ReadValues<qt::StereoFrame>(capture);
        host.StartUp();
        return frames;
    }
    /// Where in the capture the sound begins, found by its frames from `from` on; behind its end when it
    /// isn't there.
    static std::size_t Find(const Frames& captured, const Frames& sound, std::size_t from) {
        for (std::size_t at = from; at + 8 < captured.size(); ++at) {
            const auto* part = sound.data() + from;
            if (std::equal(part, part + 8, captured.data() + at, Same)) return at - from;
        }
        return captured.size();
    }
    /// Checks that the capture has this sound once, whole but for its ramps, between silence.
    static void ExpectOnly(const Frames& captured, const Frames& sound) {
        const std::size_t start = Find(captured, sound, kRamp);
        ASSERT_LE(start + sound.size(), captured.size()) << "the sound is not there";
        for (std::size_t i = 0; i < captured.size(); ++i) {
            if (i < start || i >= start + sound.size()) {
                ASSERT_TRUE(IsSilent(captured[i])) << i << " of " << start;
            } else if (i >= start + kRamp && i + kRamp < start + sound.size()) {
                ASSERT_TRUE(Same(captured[i], sound[i - start])) << i << " of " << start;
            }
        }
    }

    std::string capture = folder + "/capture.raw";
    test::EnvironmentVariable driver{"SDL_AUDIODRIVER", "disk"};
    test::EnvironmentVariable file{"SDL_DISKAUDIOFILE", capture};
};

TEST_F(Playback, GivesTheDeviceEverySampleWhileTheCallWaits) {
    const Frames sound = Noise(kRate / 2, 1);
    const auto begin = Clock::now();
    Play({Wave(sound)});
    EXPECT_GE(Clock::now() - begin, milliseconds(450));
    EXPECT_EQ(PlayStatus(), "0");
    ExpectOnly(Captured(), sound);
}

TEST_F(Playback, DropsNothingWhileTheHostPumpsNowAndThen) {
    const Frames sound = Noise(2 * kRate, 2);
    Play({Wave(sound), Text("1")});
    EXPECT_EQ(PlayStatus(), "1");
    PumpIrregularly();
    EXPECT_EQ(PlayStatus(), "0");
    ExpectOnly(Captured(), sound);
}

TEST_F(Playback, PlaysTheSelection) {
    const Frames sound = Noise(kRate, 3);
    const FM_Data wave = Wave(sound);
    Play({wave, Text("no"), Text("0:0:0.5"), Text("0:0:0.25")});
    ExpectOnly(Captured(), {sound.begin() + kRate / 4, sound.begin() + kRate / 2});
    Play({wave, Text("no"), Text("0:0:0.75"), Text("0:1:0")});
    ExpectOnly(Captured(), {sound.begin() + 3 * kRate / 4, sound.end()});
    EXPECT_EQ(Run(kPlaySound, {wave, Text("no"), Text("0:0:2"), Text("0:0:3")}),
              "$-2014:Media_PlaySound: The duration used is invalid. Error making sound selection.");
}

TEST_F(Playback, FollowsVolumeAndBalance) {
    const Frames sound = Noise(kRate / 4, 4);
    Frames expected = sound;
    for (auto& frame : expected) frame = {frame.left * 0.5F, frame.right * 0.125F};
    Set("volume", "0.5");
    Set("balance", "-0.75");
    Play({Wave(sound)});
    ExpectOnly(Captured(), expected);
    Set("volume", "-1");
    Play({Wave(sound)});
    EXPECT_TRUE(std::ranges::all_of(Captured(), IsSilent));
}

TEST_F(Playback, EndsAtATempoThatNeverCouldEnd) {
    const FM_Data wave = Wave(Noise(10 * kRate, 11));
    const auto begin = Clock::now();
    Play({wave, Text("1")});
    for (const char* tempo : {"0", "-1"}) {
        Set("tempo", tempo);
        Play({wave});
        EXPECT_EQ(PlayStatus(), "0");
    }
    PumpIrregularly();
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(8)) << "the one in the background, too";
}

// A hundred times what it takes: only waiting that is none is found.
TEST_F(Playback, LeavesTheProcessorToOthers) {
    Wave(Noise(3 * kRate, 12));
    rusage before{};
    rusage after{};
    getrusage(RUSAGE_CHILDREN, &before);
    Shell(CORVANE_PROGRAM " eval --strict 'Media_PlaySound ( \"/C:" + folder +
          "/s.wav\" ; True )' 'HostPump ( 2.5 )' >/dev/null");
    getrusage(RUSAGE_CHILDREN, &after);
    const auto seconds = [](const rusage& usage) {
        return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
               static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
    };
    EXPECT_LT(seconds(after) - seconds(before), 1.5);
}

TEST_F(Playback, PausesAndResumesInPlace) {
    const Frames sound = Noise(kRate, 6);
    Play({Wave(sound), Text("1")});
    PumpFrames(kRate / 4);
    PlayPause();
    EXPECT_EQ(PlayStatus(), "0");
    PumpFrames(kRate / 5);
    PlayPause({Text("0")});
    EXPECT_EQ(PlayStatus(), "1");
    PumpIrregularly();
    const Frames captured = Captured();
    const std::size_t start = Find(captured, sound, kRamp);
    ASSERT_LT(start, captured.size());
    std::size_t stop = kRamp;
    while (Same(captured[start + stop], sound[stop])) ++stop;
    const auto pause = captured.begin() + static_cast<std::ptrdiff_t>(start + stop + kRamp);
    const auto length = std::find_if_not(pause, captured.end(), IsSilent) - pause;
    EXPECT_GT(length, kRate / 10);
    const std::size_t behind = stop + 2 * kRamp;
    const std::size_t again = Find(captured, sound, behind);
    EXPECT_NEAR(static_cast<double>(again - start), static_cast<double>(length), 2)
        << "frames were lost or came twice";
    for (std::size_t i = behind; i + kRamp < sound.size(); ++i)
        ASSERT_TRUE(Same(captured[again + i], sound[i])) << i;
}

TEST_F(Playback, MixesAndStopsWithoutClicks) {
    constexpr std::size_t kWhile = kRate / 20;
    const Frames level(kRate * 7 / 5, {0.25F, -0.25F}); // all of it is decoded ahead
    Play({Wave(level, "a.wav"), Text("1")});
    PumpFrames(kWhile);
    Play({Wave(level, "b.wav"), Text("1")});
    PumpFrames(kWhile);
    PlayPause();
    PumpFrames(kWhile);
    PlayPause();
    PumpFrames(kWhile);
    Set("volume", "0.5");
    PumpFrames(kWhile);
    EXPECT_EQ(PlayStatus(), "1");
    EXPECT_EQ(Run(kStopSound, {}), "$0:Media_StopSound: No error.");
    EXPECT_EQ(PlayStatus(), "0");
    PumpFrames(kWhile);
    PumpIrregularly();
    const Frames captured = Captured();
    float loudest = 0;
    for (std::size_t i = 1; i < captured.size(); ++i) {
        loudest = std::max(loudest, captured[i].left);
        ASSERT_LE(std::abs(captured[i].left - captured[i - 1].left), 0.5F / kRamp * 1.01F) << i;
        ASSERT_EQ(captured[i].left, -captured[i].right) << i;
    }
    EXPECT_EQ(loudest, 0.5F);
    EXPECT_TRUE(IsSilent(captured.back()));
}

TEST_F(Playback, OtherRatesChannelsAndTempos) {
    Shell("sox -n -r 22050 -c 1 -b 8 mono.wav synth 0.3 sine 1000 vol 0.5 && "
          "sox -n -r 48000 -c 2 high.flac synth 0.3 sine 1000 vol 0.5");
    const std::tuple<const char*, const char*, double> cases[] = {
        {"mono.wav", "1", 0.3}, {"high.flac", "1", 0.3}, {"high.flac", "2", 0.15}, {"mono.wav", "0.5", 0.6}};
    for (const auto& [name, tempo, seconds] : cases) {
        SCOPED_TRACE(testing::Message() << name << " at tempo " << tempo);
        Set("tempo", tempo);
        Play({File(name)});
        const Frames captured = Captured();
        std::size_t crossings = 0;
        float loudest = 0;
        for (std::size_t i = 1; i < captured.size(); ++i) {
            crossings += captured[i - 1].left < 0 && captured[i].left >= 0 ? 1U : 0U;
            loudest = std::max(loudest, captured[i].right);
        }
        EXPECT_NEAR(static_cast<double>(crossings), 300, 2) << "the pitch follows";
        EXPECT_NEAR(loudest, 0.5F, 0.015F) << "8 bits with dither";
        const auto first = std::find_if_not(captured.begin(), captured.end(), IsSilent);
        const auto last = std::find_if_not(captured.rbegin(), captured.rend(), IsSilent).base();
        EXPECT_NEAR(static_cast<double>(last - first), seconds * kRate, 3);
    }
}

TEST_F(Playback, StopsAtTheAbortKeys) {
    const FM_Data wave = Wave(Noise(10 * kRate, 7));
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
    Play({Wave(sound), Text("1")});
    Pump(milliseconds(100));
    EXPECT_LT(Captured().size(), sound.size());
    EXPECT_FALSE(fm::CurrentSession().dispatch_messages);
    EXPECT_EQ(PlayStatus(), "0");
}

TEST_F(Playback, TellsWhatFails) {
    const auto play = [&](std::initializer_list<FM_Data> values) {
        const test::Outcome outcome = host.CallFunction(kPlaySound, values);
        EXPECT_TRUE(outcome.text.starts_with("$" + std::to_string(outcome.error) + ":")) << outcome.text;
        return outcome.text;
    };
    const FM_Data wave = Wave(Noise(100, 9));
    FM_Data empty;
    empty.SetContainer({});
    const std::string wrong = "$-50:Media_PlaySound: Wrong parameter(s). ";
    EXPECT_EQ(play({}), wrong + "This function requires 1 to 4 parameters.");
    EXPECT_EQ(play({wave, wave, wave, wave, wave}), wrong + "This function requires 1 to 4 parameters.");
    EXPECT_EQ(play({empty}), wrong + "The container in argument #1 seems to be empty.");
    EXPECT_EQ(play({Text("none.wav")}), wrong + "Could not get parameter #1 as sound.");
    EXPECT_EQ(play({wave, Text("1"), Text("x")}), wrong + "Could not get parameter #3 as time.");
    EXPECT_EQ(play({wave, Text("1"), Text("0:0:0"), Text("x")}),
              wrong + "Could not get parameter #4 as time.");
    EXPECT_EQ(Run(kPlayPause, {wave, wave}),
              "$-50:Media_PlayPause: Wrong parameter(s). This function requires 0 or 1 parameter.");
    driver.Set("none such");
    const std::string missing = "$-200:Media_PlaySound: The required sound hardware is missing. ";
    EXPECT_EQ(play({wave}), missing + "Error playing sound.");
    EXPECT_EQ(play({wave, Text("1")}), missing + "Error adding sound to the asynchronous pool.");
    EXPECT_EQ(PlayStatus(), "0");
}

TEST_F(Playback, KeepsTimeWithoutADevice) {
    driver.Set(std::nullopt);
    const auto begin = Clock::now();
    Play({Wave(Noise(kRate / 2, 10))});
    EXPECT_GE(Clock::now() - begin, milliseconds(400));
}

} // namespace
} // namespace corvane
