// Recording from the driver that reads a file, in real time: every frame of it is another one.
#include "platform/win32/paths.h"
#include "plugin/hex_blocks.h"
#include "sounds/recording_manager.h"
#include "tests/plugin/started_host.h"
#include "tests/support/environment_variable.h"
#include "tests/support/files.h"
#include "tests/support/small_disk.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <thread>

namespace corvane {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr std::int16_t kStart = 17;
constexpr std::int16_t kStop = 18;
constexpr std::int16_t kPause = 19;
constexpr std::int16_t kFormatDialog = 20;
constexpr std::uint32_t kRate = 44'100;

struct Recording : testing::Test {
    Recording() {
        fm::CurrentSession().drives = {{"C:", ""}};
        host.file_path = u"file:/C:/Untitled.fp7";
        std::string frames;
        for (std::uint32_t i = 1; i < 10 * kRate; ++i)
            frames.append(reinterpret_cast<const char*>(&i), sizeof(i));
        test::WriteBytes(folder + "/input.raw", frames);
        host.CallFunction(23, {Text("lmworkaround"), Text("0")});
    }

    static FM_Data Text(const std::string& text) { return test::TextValue(text); }
    [[nodiscard]] FM_Data Path(const std::string& name) const { return Text("/C:" + folder + "/" + name); }
    std::string LastError() { return host.CallFunction(13, {}).text; }
    std::string Status() { return host.CallFunction(21, {Text("recording")}).text; }
    test::Outcome Start(std::initializer_list<FM_Data> values) { return host.CallFunction(kStart, values); }

    static void Pump(milliseconds length) {
        const auto end = Clock::now() + length;
        while (Clock::now() < end) {
            if (fm::CurrentSession().dispatch_messages) fm::CurrentSession().dispatch_messages();
            std::this_thread::sleep_for(milliseconds(10));
        }
    }

    /// The numbers of the frames in a file, as another program reads them.
    [[nodiscard]] std::vector<std::uint32_t> Frames(const std::string& file) const {
        const std::string raw = folder + "/read.raw";
        const std::string command = "ffmpeg -v error -y -i '" + file + "' -f s16le '" + raw + "'";
        EXPECT_EQ(std::system(command.c_str()), 0);
        const std::string bytes = test::ReadBytes(raw);
        std::vector<std::uint32_t> frames(bytes.size() / sizeof(std::uint32_t));
        std::memcpy(frames.data(), bytes.data(), frames.size() * sizeof(std::uint32_t));
        return frames;
    }
    /// How often a frame is not the one behind the frame before it.
    static int Breaks(const std::vector<std::uint32_t>& frames) {
        int breaks = 0;
        for (std::size_t i = 1; i < frames.size(); ++i) breaks += frames[i] == frames[i - 1] + 1 ? 0 : 1;
        return breaks;
    }

    test::ScratchDrives scratch; // only its folder is of use: the host's drive C: is the whole machine
    std::string folder = scratch.MakeFolder("work");
    std::string temporary = scratch.MakeFolder("temporary");
    test::EnvironmentVariable driver{"SDL_AUDIODRIVER", "disk"};
    test::EnvironmentVariable input{"SDL_DISKAUDIOFILEIN", folder + "/input.raw"};
    test::StartedHost host;
    test::EnvironmentVariable variable{"TMPDIR", temporary}; // after the host's own folder has been made
};

TEST_F(Recording, HasEveryFrameButThoseOfThePause) {
    const std::string target = folder + "/r.mov";
    test::WriteBytes(target, std::string(3'000'000, 'x')); // what was there before does not stay
    EXPECT_EQ(Start({Path("r.mov"), Text("1")}).text, "");
    EXPECT_EQ(Status(), "1");
    Pump(milliseconds(300));
    std::this_thread::sleep_for(milliseconds(400)); // a host that is busy
    EXPECT_EQ(host.CallFunction(kPause, {}).error, 0);
    EXPECT_EQ(Status(), "0");
    Pump(milliseconds(200));
    host.CallFunction(kPause, {});
    EXPECT_EQ(Status(), "1");
    Pump(milliseconds(300));
    EXPECT_EQ(host.CallFunction(kStop, {}).text,
              "size:0,0\rmovie:" + folder.substr(1) + "/r.mov\rmoviewin:/C:" + target);
    EXPECT_EQ(LastError(), "$0:Media_RecordSoundStop: No error.");
    Pump(milliseconds(30));
    EXPECT_FALSE(fm::CurrentSession().dispatch_messages) << "the timer is gone";
    const auto frames = Frames(target);
    ASSERT_GT(frames.size(), kRate / 2);
    EXPECT_EQ(frames.front(), 1U);
    EXPECT_EQ(Breaks(frames), 1);
    EXPECT_GT(frames.back() - frames.front() + 1 - frames.size(), kRate / 20) << "the pause is not in it";
}

// Whatever ends the process leaves the file as a copy finds it.
TEST_F(Recording, CanBeOpenedAtAnyMomentUpToTheLastSecond) {
    Start({Path("r.mov"), Text("1")});
    const auto empty = std::filesystem::file_size(folder + "/r.mov");
    for (const int after : {100, 600, 700, 800}) {
        Pump(milliseconds(after));
        std::filesystem::copy_file(folder + "/r.mov", folder + "/copy.mov",
                                   std::filesystem::copy_options::overwrite_existing);
        const auto written =
            (std::filesystem::file_size(folder + "/copy.mov") - empty) / sizeof(std::uint32_t);
        const auto frames = Frames(folder + "/copy.mov");
        EXPECT_EQ(Breaks(frames), 0);
        EXPECT_GT(frames.size(), 0U);
        EXPECT_GE(frames.size() + kRate * 13 / 10, written);
    }
    host.CallFunction(kStop, {});
}

TEST_F(Recording, OfAKilledProcessOpensUpToTheLastSecond) {
    constexpr std::uintmax_t kRoom = 1U << 17; // in front of the samples
    const std::string file = folder + "/r.mov";
    const std::string enough = std::to_string(kRoom + sizeof(std::uint32_t) * kRate * 3 / 2);
    const std::string record = CORVANE_PROGRAM " eval 'Media_RecordSoundStart ( \"/C:" + file +
                               "\" ; True )' 'HostPump ( 60 )' >/dev/null & recorder=$!; tries=0; ";
    const std::string wait = "until [ \"$(stat -c %s '" + file + "' 2>/dev/null || echo 0)\" -gt " + enough +
                             " ]; do tries=$((tries + 1)); [ $tries -lt 300 ] || break; sleep 0.1; done; ";
    ASSERT_EQ(std::system((record + wait + "kill -9 $recorder && [ $tries -lt 300 ]").c_str()), 0);
    const auto written = (std::filesystem::file_size(file) - kRoom) / sizeof(std::uint32_t);
    const auto frames = Frames(file);
    ASSERT_FALSE(frames.empty());
    EXPECT_EQ(frames.front(), 1U);
    EXPECT_EQ(Breaks(frames), 0);
    EXPECT_GE(frames.size() + kRate * 13 / 10, written);
    const std::string info = host.CallFunction(6, {Path("r.mov")}).text;
    EXPECT_NE(info.find("Sample Rate (Hz): 44100"), std::string::npos) << info;
}

TEST_F(Recording, GoesOnUntilAClick) {
    fm::CurrentSession().input = {{Clock::now() + milliseconds(200), ""}};
    const test::Outcome recorded = Start({});
    EXPECT_EQ(recorded.error, 0) << LastError();
    EXPECT_EQ(recorded.type, kFM_TypeContainer);
    EXPECT_EQ(test::CountEntries(temporary), 0);
    EXPECT_TRUE(fm::CurrentSession().input.empty());

    fm::CurrentSession().input = {{Clock::now() + milliseconds(200), "right button"}};
    EXPECT_TRUE(Start({Path("r.mov")}).text.ends_with("moviewin:/C:" + folder + "/r.mov"));
    EXPECT_EQ(Breaks(Frames(folder + "/r.mov")), 0);
    EXPECT_EQ(Status(), "0");

    EXPECT_EQ(Start({test::NumberValue("7")}).error, 0) << "no target, no recording";
    EXPECT_EQ(LastError(), "$0:Media_RecordSoundStart: No error.");
}

TEST_F(Recording, InTheTemporaryFolderStaysThere) {
    Start({test::NumberValue("0"), Text("yes")});
    Pump(milliseconds(100));
    const std::string reference = host.CallFunction(kStop, {}).text;
    const auto path = reference.find("moviewin:/C:");
    ASSERT_NE(path, std::string::npos);
    EXPECT_GT(Frames(reference.substr(path + 12)).size(), kRate / 50);
}

TEST_F(Recording, RefusesWhatIsNoTarget) {
    scratch.MakeFile("work/file");
    const auto refused = [&](std::initializer_list<FM_Data> values) {
        const test::Outcome outcome = Start(values);
        EXPECT_EQ(outcome.text, "");
        const std::string error = LastError();
        EXPECT_TRUE(error.starts_with("$" + std::to_string(outcome.error) + ":Media_RecordSoundStart: "))
            << error;
        return error.substr(error.find(": ") + 2);
    };
    FM_Data container;
    container.SetContainer({});
    EXPECT_EQ(refused({container}),
              "Wrong parameter(s). QuickTime reference is not a meaningful destination for recording.");
    EXPECT_EQ(refused({Path("")}),
              "File was expected, not directory. Recording target must be a file, not directory.");
    EXPECT_EQ(refused({Path("no/r.mov")}), "File was not found. Parent folder must exist.");
    EXPECT_EQ(refused({Path("no/no/r.mov")}), "File was not found. Parent folder must exist.");
    EXPECT_EQ(refused({Path("file/r.mov")}), " Parent folder must be a directory.");
    EXPECT_EQ(refused({Path("r?.mov")}), "Wrong parameter(s).");
    EXPECT_EQ(refused({Text(""), Text("1"), Text("<hex></hex>")}),
              "Feature is not implemented yet. Hex settings are currently unimplemented.");
    EXPECT_EQ(test::CountEntries(temporary), 0);
    driver.Set("none such");
    scratch.MakeFile("work/old.mov", "what was recorded before");
    EXPECT_EQ(refused({Path("old.mov")}),
              "The required sound hardware is missing. Synchronous recording failed.");
    EXPECT_EQ(test::ReadBytes(folder + "/old.mov"), "what was recorded before");
    EXPECT_EQ(refused({Text(""), Text("1")}),
              "The required sound hardware is missing. Could not start asynchronous recording.");
    EXPECT_EQ(test::CountEntries(temporary), 0);
    EXPECT_EQ(host.CallFunction(kStop, {}).error, -3155) << "nothing is left of them";
}

TEST_F(Recording, IsOneAtATime) {
    EXPECT_EQ(host.CallFunction(kStop, {}).error, -3155);
    EXPECT_EQ(LastError(), "$-3155:Media_RecordSoundStop: Plug-in tried to issue a call in a wrong internal "
                           "state. Please contact, "
                           "developer. There is no recording to stop. Call Media_RecordSoundStart before "
                           "calling this function again.");
    EXPECT_EQ(host.CallFunction(kPause, {}).error, 0);
    EXPECT_TRUE(LastError().ends_with(
        "You are currently not recording. Use Media_RecordSoundStart before using this function."));
    Start({Path("r.mov"), Text("1")});
    EXPECT_EQ(Start({Path("other.mov"), Text("1")}).error, -227);
    EXPECT_EQ(LastError(),
              "$-227:Media_RecordSoundStart: Device is currently busy. Only one recording is allowed. Call "
              "Media_RecordSoundStop before calling this function again.");
    EXPECT_FALSE(test::IsThere(folder + "/other.mov"));
    Pump(milliseconds(100));
    host.CallFunction(kPause, {});
    EXPECT_EQ(Start({Path("r.mov"), Text("1")}).error, -61) << "what is recorded so far is not lost";
    EXPECT_EQ(Start({Path("other.mov"), Text("1")}).error, -1) << "the paused one has the device";
    EXPECT_NE(host.CallFunction(kStop, {}).text, "");
    EXPECT_FALSE(Frames(folder + "/r.mov").empty());
}

TEST_F(Recording, KeepsWhatFitsOnAFullDisk) {
    scratch.MakeFolder("work/disk");
    const test::SmallDisk disk(folder + "/disk", "256k");
    if (!disk.IsMounted()) GTEST_SKIP() << "mounting is not permitted";
    EXPECT_EQ(Start({Path("disk/r.mov"), Text("1")}).error, 0);
    const auto limit = Clock::now() + std::chrono::seconds(20);
    while (Status() == "1" && Clock::now() < limit) Pump(milliseconds(50));
    EXPECT_EQ(Status(), "0");
    EXPECT_EQ(host.CallFunction(kStop, {}).error, -3155);
    EXPECT_TRUE(LastError().ends_with("Recording error."));
    const auto frames = Frames(folder + "/disk/r.mov");
    EXPECT_GT(frames.size(), kRate / 2);
    EXPECT_EQ(Breaks(frames), 0);
    EXPECT_EQ(Start({Path("r.mov"), Text("1")}).error, 0) << "the next one has the device";
    host.CallFunction(kStop, {});
}

TEST_F(Recording, TellsThatItsFolderIsGone) {
    scratch.MakeFolder("work/gone");
    Start({Path("gone/r.mov"), Text("1")});
    Pump(milliseconds(50));
    std::filesystem::remove_all(folder + "/gone");
    Pump(milliseconds(50));
    EXPECT_EQ(host.CallFunction(kStop, {}).error, -43);
    EXPECT_EQ(LastError(), "$-43:Media_RecordSoundStop: File was not found. Failed to open recorded sound.");
}

TEST_F(Recording, EndsWithTheHost) {
    Start({Path("r.mov"), Text("1")});
    Pump(milliseconds(300));
    host.Send(kFM_CallShutdown);
    EXPECT_FALSE(fm::CurrentSession().dispatch_messages);
    EXPECT_GT(Frames(folder + "/r.mov").size(), kRate / 10);
    host.StartUp();
    EXPECT_EQ(Status(), "0");
}

TEST_F(Recording, UsesTheFormatOfTheDialog) {
    fm::CurrentSession().answers = {"cancel", "set:rate=22050,channels=1"};
    EXPECT_EQ(host.CallFunction(kFormatDialog, {}).text, "");
    EXPECT_EQ(LastError(), "$-128:Media_RecordSoundFormatDialog: Operation canceled by the user.");
    const test::Outcome format = host.CallFunction(kFormatDialog, {});
    EXPECT_EQ(format.error, 0);
    const SettingsBytes settings = HexBlockToSettings(format.text);
    EXPECT_EQ(settings.code, 0) << format.text;
    EXPECT_NE(settings.bytes.find("srat22050"), std::string::npos);
    EXPECT_NE(settings.bytes.find("schn1"), std::string::npos);
    Start({Path("r.mov"), Text("1")});
    fm::CurrentSession().answers = {"ok"};
    EXPECT_EQ(host.CallFunction(kFormatDialog, {}).text, "");
    EXPECT_EQ(
        LastError(),
        "$-1:Media_RecordSoundFormatDialog: Unknown error. Recording not available at this time. Try to stop "
        "current recording.");
    Pump(milliseconds(100));
    host.CallFunction(kStop, {});
    const std::string info = host.CallFunction(6, {Path("r.mov")}).text;
    EXPECT_NE(info.find("Sample Rate (Hz): 22050"), std::string::npos) << info;
    EXPECT_NE(info.find("Number of Channels: 1"), std::string::npos) << info;
}

TEST_F(Recording, RecordersAllowWhatTheirStateAllows) {
    SoundRecorder recorder;
    using State = SoundRecorder::State;
    const auto refused = [&](std::initializer_list<std::int32_t (SoundRecorder::*)()> operations) {
        const State state = recorder.GetState();
        for (const auto operation : operations) EXPECT_EQ((recorder.*operation)(), kWrongState);
        EXPECT_EQ(recorder.GetState(), state);
    };
    refused({&SoundRecorder::Start, &SoundRecorder::Stop, &SoundRecorder::TogglePause, &SoundRecorder::Idle});
    EXPECT_EQ(recorder.Create(), 0);
    refused(
        {&SoundRecorder::Create, &SoundRecorder::Start, &SoundRecorder::Stop, &SoundRecorder::TogglePause});
    qt::DataReference output;
    const std::string target = scratch.MakeFile("work/r.mov");
    const auto native = win32::ToNativePath(target).value();
    QTNewDataReferenceFromFullPathCFString(native, kQTWindowsPathStyle, 0, output);
    EXPECT_EQ(recorder.SetOutput(output), 0);
    EXPECT_EQ(recorder.SetOutput(output), 0) << "again, before it starts";
    RecorderStatus status;
    EXPECT_EQ(recorder.GetStatus(status), 0);
    EXPECT_GT(status.bytes, 0);
    EXPECT_EQ(status.seconds, status.bytes / 4 / kRate);
    EXPECT_EQ(recorder.Start(), 0);
    EXPECT_EQ(recorder.SetOutput(output), kWrongState);
    refused({&SoundRecorder::Start});
    EXPECT_EQ(recorder.TogglePause(), 0);
    EXPECT_EQ(recorder.GetState(), State::kPaused);
    refused({&SoundRecorder::Idle, &SoundRecorder::Start});
    EXPECT_EQ(recorder.Stop(), 0);
    EXPECT_EQ(recorder.GetState(), State::kReady);
    EXPECT_EQ(recorder.Start(), -9408) << "each recording needs its output set";
    EXPECT_EQ(recorder.SetOutput(output), 0);
    EXPECT_EQ(recorder.Start(), 0);
    recorder.Dispose();
    refused({&SoundRecorder::Create, &SoundRecorder::Start, &SoundRecorder::Stop});
}

} // namespace
} // namespace corvane
