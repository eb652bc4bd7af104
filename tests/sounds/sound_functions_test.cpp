// The sound functions while their host or their disk fails: codes and messages, and no file that stays.
#include "files/default_folder.h"
#include "platform/fmwrapper/fault.h"
#include "tests/sounds/sound_session.h"
#include "tests/support/small_disk.h"

#include <filesystem>

namespace corvane {
namespace {

namespace fs = std::filesystem;

constexpr std::int16_t kFadeSound = 12;

struct Example {
    std::int16_t id;
    std::initializer_list<FM_Data> values;
};

// Results refer to the sound files themselves.
struct SoundFunctions : SoundSession {
    SoundFunctions() {
        Shell("sox -n -r 44100 -c 2 -b 16 s.wav synth 1 sine 440 vol 0.5 && sox s.wav -b 24 s24.wav");
        Set("lmworkaround", "0");
    }

    test::Outcome Call(const Example& example) {
        fm::CurrentSession().answers = {"ok"};
        return host.CallFunction(example.id, example.values);
    }

    // Empties the temporary folder, and counts what was in it.
    std::ptrdiff_t TakeFiles() const {
        const std::ptrdiff_t count = test::CountEntries(temporary);
        for (const auto& entry : fs::directory_iterator(temporary)) fs::remove(entry.path());
        return count;
    }
};

TEST_F(SoundFunctions, SurviveEveryFailureOfTheHostWithoutLeavingFiles) {
    Shell("lame --quiet --ta Band s.wav s.mp3");
    const FM_Data converted = File("s24.wav"); // goes through an intermediate file first
    const FM_Data tagged = File("s.mp3");
    fm::CurrentSession().answers = {"set:channels=1"};
    const FM_Data settings = Text(Run(8, {Text("AIFF")}));
    const FM_Data target = Text("/C:" + temporary + "/out.aiff");
    const Example examples[] = {
        {3, {Text("sine"), Text("0.1"), Text("A5")}},
        {4, {converted, File("s.wav")}},
        {5, {converted, Text("0:0:0.2"), Text("0:0:0.4")}},
        {6, {converted}},
        {7, {converted, File("s.wav")}},
        {8, {Text("WAVE")}},
        {9, {converted, target, Text("AIFF"), settings}},
        {11, {converted, Text("2"), Text("0.5")}},
        {kFadeSound, {converted, Text("0:0:0"), Text("0:0:1"), Text("1"), Text("1")}},
        {16, {tagged}},
        {22, {tagged, Text("Name"), Text("x"), Text("Track"), Text("2")}},
        {24, {tagged, Text("Artist")}},
        {26, {converted}},
        {27, {converted, Text("1"), Text("90"), Text("120"), Text("0:0:0"), Text("0:0:1")}}};
    for (const Example& example : examples) {
        SCOPED_TRACE(example.id);
        const std::int64_t before = fm::OperationCount();
        const test::Outcome usual = Call(example);
        const std::int64_t operations = fm::OperationCount() - before;
        ASSERT_EQ(usual.error, 0) << LastError();
        const std::ptrdiff_t kept = TakeFiles(); // the result's file, where there is one
        const std::int64_t objects = fm::LiveObjects();
        const std::ptrdiff_t descriptors = test::CountOpenDescriptors();
        int failed = 0;
        for (std::int64_t after = 0; after < operations; ++after) {
            fm::FailOperation(after, kFM_StatusNoMemory);
            const test::Outcome outcome = Call(example);
            fm::FailNothing();
            EXPECT_EQ(fm::LiveObjects(), objects) << "operation " << after;
            EXPECT_EQ(test::CountOpenDescriptors(), descriptors) << "operation " << after;
            EXPECT_LE(TakeFiles(), kept) << "operation " << after;
            if (outcome.error == 0) continue;
            ++failed;
            EXPECT_EQ(outcome.error, -108) << "operation " << after;
            EXPECT_EQ(outcome.text, "") << "operation " << after;
        }
        EXPECT_GT(failed, 0);
    }
}

TEST_F(SoundFunctions, TellOfAFullDiskAndLeaveNothingThere) {
    const auto full = [&](const std::string& size, const Example& example) {
        const test::SmallDisk disk(temporary, size);
        if (!disk.IsMounted()) return std::string("skip");
        const test::Outcome outcome = Call(example);
        EXPECT_EQ(outcome.text, "");
        EXPECT_EQ(outcome.error, example.id == kFadeSound ? -34 : 0);
        EXPECT_EQ(test::CountEntries(temporary), 0);
        return LastError();
    };
    const std::string first = full("64k", {26, {File("s24.wav")}});
    if (first == "skip") GTEST_SKIP() << "mounting is not permitted";
    EXPECT_EQ(first, "$-34:Media_Normalize: The disk is full. Could not convert sound.");
    // Room for the amplified movie, but not for the sound file that is made of it.
    EXPECT_EQ(full("256k", {11, {File("s.wav"), Text("1")}}),
              "$-34:Media_Amplify: The disk is full. Could not amplify sound.");
    EXPECT_EQ(full("64k", {5, {File("s.wav"), Text("0:0:0"), Text("0:0:1")}}),
              "$-34:Media_ExtractSound: The disk is full. Failed to export sound as WAVE.");
    EXPECT_EQ(full("64k", {kFadeSound, {File("s.wav"), Text("0:0:0"), Text("0:0:1"), Text("1"), Text("1")}}),
              "$-34:Media_FadeSound: The disk is full. Failed to export sound as WAVE.");
}

TEST_F(SoundFunctions, LeaveAFileWithItsTagsWhereNoOtherCanBeWritten) {
    Shell("lame --quiet --ta Band s.wav s.mp3");
    const std::string disk_folder = scratch.MakeFolder("work/disk");
    const test::SmallDisk disk(disk_folder, "32k");
    if (!disk.IsMounted()) GTEST_SKIP() << "mounting is not permitted";
    Shell("cp s.mp3 disk/");
    const std::string before = test::ReadBytes(disk_folder + "/s.mp3");
    const auto set_name = [&] {
        Run(22, {File("disk/s.mp3"), Text("Name"), Text("x")});
        return LastError();
    };
    EXPECT_EQ(set_name(), "$-34:Media_SetMetadata: The disk is full.");
    EXPECT_TRUE(disk.MakeReadOnly());
    EXPECT_EQ(set_name(), "$-61:Media_SetMetadata: Write permissions error.");
    EXPECT_EQ(test::ReadBytes(disk_folder + "/s.mp3"), before);
    EXPECT_EQ(test::CountEntries(disk_folder), 1);
}

TEST_F(SoundFunctions, WarnOnceBeforeAFileFromTheNetworkIsCopied) {
    fm::CurrentSession().drives.push_back({R"(\\srv\share)", folder, true});
    const auto insert = [&] { return Run(16, {Text("//srv/share/s.wav")}); };
    const std::string message =
        "alert: Workaround being used!: Corvane's Media_InsertQuickTime is about to use a workaround for a "
        "bug in QuickTime while accessing remote media. This workaround may cause the FileMaker script to "
        "fail. Please see the documentation for Meda_InsertQuickTime for complete information. [OK]\n";
    testing::internal::CaptureStderr();
    const std::string first = insert();
    const std::string second = insert();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), message);
    EXPECT_NE(first, second) << "each has a copy of its own";
    EXPECT_EQ(TakeFiles(), 2);

    // Without room for a copy, and for a reference movie beside it, nothing stays.
    const test::SmallDisk disk(temporary, "64k");
    if (!disk.IsMounted()) GTEST_SKIP() << "mounting is not permitted";
    EXPECT_EQ(insert(), "");
    EXPECT_EQ(LastError(), "$112:Media_InsertQuickTime:  Copying file to a temporary folder has failed.");
    EXPECT_EQ(test::CountEntries(temporary), 0);
}

TEST_F(SoundFunctions, NeedNoDatabaseFileButItsFolder) {
    const Example amplify = {11, {File("s.wav"), Text("1")}};
    host.file_path = utf::ToUtf16("file:/C:" + folder + "/Missing.fp7");
    EXPECT_TRUE(Call(amplify).text.starts_with("size:0,0\rmovie:../temporary/tmp"));
    host.file_path = u"fmnet:/server/Media";
    EXPECT_TRUE(Call(amplify).text.starts_with("size:0,0\rmovie:tmp"));
    TakeFiles();
    DefaultFolder().SetFromFileMakerPath("/C:" + folder, false);
    EXPECT_EQ(Call({9, {File("s.wav"), Text("bare.wav"), Text("WAVE")}}).text,
              "size:0,0\rmovie:bare.wav\rmoviewin:/C:" + folder + "/bare.wav");
    ResetDefaultFolder();
    host.file_path.reset();
    EXPECT_EQ(Call(amplify).text, "");
    EXPECT_EQ(LastError(), "$-108:Media_Amplify: Memory full error. Could not get parameter #1 as sound.");
}

} // namespace
} // namespace corvane
