// Recording from the driver that reads a file, in real time: every frame of it is another one.
#include "platform/win32/paths.h"
#include "plugin/hex_blocks.h"
#include "sounds/recording_manager.h"
#include "tests/sounds/sound_session.h"
#include "tests/support/small_disk.h"

#include <filesystem>

namespace corvane {
namespace {

constexpr std::int16_t kGetSoundInfo = 6;
constexpr std::int16_t kStart = 17;
constexpr std::int16_t kStop = 18;
constexpr std::int16_t kPause = 19;
constexpr std::int16_t kFormatDialog = 20;
constexpr std::uint32_t kRate = 44'100;

using Frames = std::vector<std::uint32_t>;

struct Recording : SoundSession {
    Recording() {
        std::string frames;
        for (std::uint32_t i = 1; i < 10 * kRate; ++i)
            frames.append(reinterpret_cast<const char*>(&i), sizeof(i));
        test::WriteBytes(folder + "/input.raw", frames);
        Set("lmworkaround", "0");
    }

    std::string Status() { return Get("recording"); }
    FM_Error Error(std::int16_t id) { return host.CallFunction(id, {}).error; }
    test::Outcome Start(std::initializer_list<FM_Data> values) { return host.CallFunction(kStart, values); }
    /// Into a file of the folder, in the background.
    FM_Error StartFile(const std::string& name) { return Start({File(name), Text("1")}).error; }

    /// The numbers of the frames in a file, as another program reads them.
    [[nodiscard]] Frames Recorded(const std::string& file) const {
        Shell("ffmpeg -v error -y -i '" + file + "' -f s16le read.raw");
        return ReadValues<std::uint32_t>(folder + "/read.raw");
    }
    /// How often a frame is not the one behind the frame before it.
    static int Breaks(const Frames& frames) {
        int breaks = 0;
        for (std::size_t i = 1; i < frames.size(); ++i) breaks += frames[i] == frames[i - 1] + 1 ? 0 : 1;
        return breaks;
    }
    static void ExpectIn(const std::string& text, const char* part) {
        EXPECT_NE(text.find(part), std::string::npos) << text;
    }
    /// A file, `room` bytes long before the samples came, opens and lacks the last second at most.
    void ExpectOpens(const std::string& file, std::uintmax_t room) {
        const auto written = (std::filesystem::file_size(folder + "/" + file) - room) / sizeof(std::uint32_t);
        const Frames frames = Recorded(file);
        ASSERT_FALSE(frames.empty());
        EXPECT_EQ(frames.front(), 1U);
        EXPECT_EQ(Breaks(frames), 0);
        EXPECT_GE(frames.size() + kRate * 13 / 10, written);
        ExpectIn(Run(kGetSoundInfo, {File(file)}), "Sample Rate (Hz): 44100");
    }

    test::EnvironmentVariable driver{"SDL_AUDIODRIVER", "disk"};
    test::EnvironmentVariable input{"SDL_DISKAUDIOFILEIN", folder + "/input.raw"};
};

TEST_F(Recording, HasEveryFrameButThoseOfThePause) {
    const std::string target = folder + "/r.mov";
    test::WriteBytes(target, std::string(3'000'000, 'x')); // what was there before does not stay
    EXPECT_EQ(Start({File("r.mov"), Text("1")}).text, "");
    EXPECT_EQ(Status(), "1");
    Pump(milliseconds(300));
    std::this_thread::sleep_for(milliseconds(400)); // a host that is busy
    EXPECT_EQ(Error(kPause), 0);
    EXPECT_EQ(Status(), "0");
    Pump(milliseconds(200));
    EXPECT_EQ(Error(kPause), 0);
    EXPECT_EQ(Status(), "1");
    Pump(milliseconds(300));
    EXPECT_EQ(Run(kStop, {}), "size:0,0\rmovie:" + folder.substr(1) + "/r.mov\rmoviewin:/C:" + target);
    EXPECT_EQ(LastError(), "$0:Media_RecordSoundStop: No error.");
    Pump(milliseconds(30));
    EXPECT_FALSE(fm::CurrentSession().dispatch_messages) << "the timer is gone";
    const Frames frames = Recorded("r.mov");
    ASSERT_GT(frames.size(), kRate / 2);
    EXPECT_EQ(frames.front(), 1U);
    EXPECT_EQ(Breaks(frames), 1);
    EXPECT_GT(frames.back() - frames.front() + 1 - frames.size(), kRate / 20) << "the pause is not in it";
}

TEST_F(Recording, CanBeOpenedAtAnyMomentUpToTheLastSecond) {
    EXPECT_EQ(StartFile("r.mov"), 0);
    const auto empty = std::filesystem::file_size(folder + "/r.mov");
    for (const int after : {100, 600, 700, 800}) {
        Pump(milliseconds(after));
        Shell("cp r.mov copy.mov");
        ExpectOpens("copy.mov", empty);
    }
    EXPECT_EQ(Error(kStop), 0);
}

TEST_F(Recording, OfAKilledProcessOpensUpToTheLastSecond) {
    constexpr std::uintmax_t kRoom = 1U << 17; // in front of the samples
    const std::string enough = std::to_string(kRoom + sizeof(std::uint32_t) * kRate * 3 / 2);
    Shell("{ " CORVANE_PROGRAM " eval 'Media_RecordSoundStart ( \"/C:" + folder +
          "/r.mov\" ; True )' 'HostPump ( 60 )' >/dev/null & recorder=$!; tries=0; "
          "until [ \"$(stat -c %s r.mov 2>/dev/null || echo 0)\" -gt " +
          enough +
          " ]; do tries=$((tries + 1)); [ $tries -lt 300 ] || break; sleep 0.1; done; "
          "kill -9 $recorder && [ $tries -lt 300 ]; }");
    ExpectOpens("r.mov", kRoom);
}

TEST_F(Recording, GoesOnUntilAClick) {
    fm::CurrentSession().input = {{Clock::now() + milliseconds(200), ""}};
    const test::Outcome recorded = Start({});
    EXPECT_EQ(recorded.error, 0) << LastError();
    EXPECT_EQ(recorded.type, kFM_TypeContainer);
    EXPECT_EQ(test::CountEntries(temporary), 0);
    EXPECT_TRUE(fm::CurrentSession().input.empty());

    fm::CurrentSession().input = {{Clock::now() + milliseconds(200), "right button"}};
    EXPECT_TRUE(Run(kStart, {File("r.mov")}).ends_with("moviewin:/C:" + folder + "/r.mov"));
    EXPECT_EQ(Breaks(Recorded("r.mov")), 0);
    EXPECT_EQ(Status(), "0");

    EXPECT_EQ(Start({test::NumberValue("7")}).error, 0) << "no target, no recording";
    EXPECT_EQ(LastError(), "$0:Media_RecordSoundStart: No error.");
}

TEST_F(Recording, InTheTemporaryFolderStaysThere) {
    Start({test::NumberValue("0"), Text("yes")});
    Pump(milliseconds(100));
    const std::string reference = Run(kStop, {});
    const auto path = reference.find("moviewin:/C:" + temporary);
    ASSERT_NE(path, std::string::npos) << reference;
    EXPECT_GT(Recorded(reference.substr(path + 12)).size(), kRate / 50);
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
    EXPECT_EQ(refused({File("")}),
              "File was expected, not directory. Recording target must be a file, not directory.");
    EXPECT_EQ(refused({File("no/r.mov")}), "File was not found. Parent folder must exist.");
    EXPECT_EQ(refused({File("no/no/r.mov")}), "File was not found. Parent folder must exist.");
    EXPECT_EQ(refused({File("file/r.mov")}), " Parent folder must be a directory.");
    EXPECT_EQ(refused({File("r?.mov")}), "Wrong parameter(s).");
    EXPECT_EQ(Start({Text("/C:/dev/pts/r.mov")}).error, 5) << "the platform's number";
    EXPECT_TRUE(LastError().ends_with(" Failed to create recording file."));
    EXPECT_EQ(refused({Text(""), Text("1"), Text("<hex></hex>")}),
              "Feature is not implemented yet. Hex settings are currently unimplemented.");
    driver.Set("none such");
    scratch.MakeFile("work/old.mov", "what was recorded before");
    EXPECT_EQ(refused({File("old.mov")}),
              "The required sound hardware is missing. Synchronous recording failed.");
    EXPECT_EQ(test::ReadBytes(folder + "/old.mov"), "what was recorded before");
    EXPECT_EQ(refused({Text(""), Text("1")}),
              "The required sound hardware is missing. Could not start asynchronous recording.");
    EXPECT_EQ(test::CountEntries(temporary), 0);
    EXPECT_EQ(StartFile("new.mov"), -200);
    EXPECT_FALSE(test::IsThere(folder + "/new.mov")) << "no empty file where there was none";
    EXPECT_EQ(Error(kStop), -3155) << "nothing is left of them";
}

TEST_F(Recording, IsOneAtATime) {
    EXPECT_EQ(Error(kStop), -3155);
    EXPECT_EQ(LastError(), "$-3155:Media_RecordSoundStop: Plug-in tried to issue a call in a wrong internal "
                           "state. Please contact, developer. There is no recording to stop. Call "
                           "Media_RecordSoundStart before calling this function.");
    EXPECT_EQ(Error(kPause), 0);
    EXPECT_TRUE(LastError().ends_with(
        "You are currently not recording. Use Media_RecordSoundStart before using this function."));
    EXPECT_EQ(StartFile("r.mov"), 0);
    EXPECT_EQ(StartFile("other.mov"), -227);
    EXPECT_EQ(LastError(),
              "$-227:Media_RecordSoundStart: Device is currently busy. Only one recording is allowed. Call "
              "Media_RecordSoundStop before calling this function again.");
    EXPECT_FALSE(test::IsThere(folder + "/other.mov"));
    Pump(milliseconds(100));
    EXPECT_EQ(Error(kPause), 0);
    EXPECT_EQ(StartFile("r.mov"), -61) << "what is recorded so far is not lost";
    EXPECT_EQ(StartFile("other.mov"), -1) << "the paused one has the device";
    EXPECT_NE(Run(kStop, {}), "");
    EXPECT_FALSE(Recorded("r.mov").empty());
}

TEST_F(Recording, KeepsWhatFitsOnAFullDisk) {
    const test::SmallDisk disk(scratch.MakeFolder("work/disk"), "256k");
    if (!disk.IsMounted()) GTEST_SKIP() << "mounting is not permitted";
    EXPECT_EQ(StartFile("disk/r.mov"), 0);
    EXPECT_TRUE(PumpUntil([&] { return Status() == "0"; }));
    EXPECT_EQ(Error(kStop), -3155);
    EXPECT_TRUE(LastError().ends_with("Recording error."));
    const Frames frames = Recorded("disk/r.mov");
    EXPECT_GT(frames.size(), kRate / 2);
    EXPECT_EQ(Breaks(frames), 0);
    EXPECT_EQ(StartFile("r.mov"), 0) << "the next one has the device";
    EXPECT_EQ(Error(kStop), 0);
}

TEST_F(Recording, TellsThatItsFolderIsGone) {
    scratch.MakeFolder("work/gone");
    EXPECT_EQ(StartFile("gone/r.mov"), 0);
    Pump(milliseconds(50));
    std::filesystem::remove_all(folder + "/gone");
    Pump(milliseconds(50));
    EXPECT_EQ(Error(kStop), -43);
    EXPECT_EQ(LastError(), "$-43:Media_RecordSoundStop: File was not found. Failed to open recorded sound.");
}

TEST_F(Recording, EndsWithTheHost) {
    EXPECT_EQ(StartFile("r.mov"), 0);
    Pump(milliseconds(300));
    host.Send(kFM_CallShutdown);
    EXPECT_FALSE(fm::CurrentSession().dispatch_messages);
    EXPECT_GT(Recorded("r.mov").size(), kRate / 10);
    host.StartUp();
    EXPECT_EQ(Status(), "0");
}

TEST_F(Recording, UsesTheFormatOfTheDialog) {
    fm::CurrentSession().answers = {"cancel", "set:rate=22050,channels=1"};
    EXPECT_EQ(Run(kFormatDialog, {}), "");
    EXPECT_EQ(LastError(), "$-128:Media_RecordSoundFormatDialog: Operation canceled by the user.");
    const SettingsBytes settings = HexBlockToSettings(Run(kFormatDialog, {}));
    EXPECT_EQ(LastError(), "$0:Media_RecordSoundFormatDialog: No error.");
    EXPECT_EQ(settings.code, 0);
    ExpectIn(settings.bytes, "srat22050");
    ExpectIn(settings.bytes, "schn1");
    EXPECT_EQ(StartFile("r.mov"), 0);
    fm::CurrentSession().answers = {"ok"};
    EXPECT_EQ(Run(kFormatDialog, {}), "");
    EXPECT_EQ(LastError(),
              "$-1:Media_RecordSoundFormatDialog: Unknown error. Recording not available at this "
              "time. Try to stop current recording.");
    Pump(milliseconds(100));
    EXPECT_EQ(Error(kStop), 0);
    const std::string info = Run(kGetSoundInfo, {File("r.mov")});
    ExpectIn(info, "Sample Rate (Hz): 22050");
    ExpectIn(info, "Number of Channels: 1");
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
    const auto native = win32::ToNativePath(scratch.MakeFile("work/r.mov")).value();
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
