// The file functions as the host calls them. Most of their behaviour is tested by calculations; here stands
// what those can't reach: faults, export mode, descriptors.
#include "files/functions.h"

#include "files/default_folder.h"
#include "files/numbered_files.h"
#include "platform/fmwrapper/fault.h"
#include "platform/win32/shell_link.h"
#include "tests/support/calls.h"
#include "tests/support/drive_test.h"
#include "tests/support/environment_variable.h"
#include "tests/support/files.h"

#include <string>
#include <sys/stat.h>

namespace {

using namespace corvane;
using test::Call;
using test::NumberValue;
using test::ReadBytes;
using test::TextValue;

struct FileFunctions : test::DriveTest {
    FileFunctions() { ResetDefaultFolder(); }
    static std::string Run(FM_ExternalFunction function, std::initializer_list<FM_Data> values) {
        const test::Outcome outcome = Call(function, values);
        EXPECT_EQ(outcome.error, 0);
        return outcome.text;
    }
    test::FakeHost host;
};

TEST_F(FileFunctions, ExportModeCompletesTheNameOnce) {
    drives.MakeFile("c/source.jpg", "1");
    drives.MakeFolder("c/out");
    const auto copy = [](const char* target) {
        return Run(CopyItem, {TextValue("/C:/source.jpg"), TextValue(target), NumberValue("0")});
    };
    SetExportMode();
    EXPECT_EQ(copy("/C:/out/plain"), "");
    EXPECT_EQ(copy("/C:/out/plain"), "");
    SetExportMode();
    EXPECT_EQ(copy("/C:/out/plain"), "$7:CopyItem failed"); // on plain.jpg; plain itself is a file now
    SetExportMode();
    EXPECT_EQ(copy("/C:/gone/x"), "$-120:CopyItem failed");
    EXPECT_EQ(copy("/C:/out/last"), "");
    EXPECT_EQ(test::Listing(c + "/out"), "last=1 plain.jpg=1 plain=1");
}

TEST_F(FileFunctions, NoChoiceOfADefaultFolderIsNoFailure) {
    EXPECT_EQ(Run(SetDefaultFolder, {TextValue(".U")}), "$0:Cancel");
}

TEST_F(FileFunctions, OpenItemFollowsTheAliasThatCreateAliasMade) {
    const std::string opener =
        drives.MakeFile("opener", "#!/bin/sh\nprintf %s \"$1\" > '" + drives.Path("opened") + "'\n");
    chmod(opener.c_str(), 0755);
    const test::EnvironmentVariable variable("CORVANE_OPENER", opener);
    drives.Map(R"(\\srv\share)", "s");
    for (const auto& [path, file] :
         {std::pair("/C:/Ünï.txt", "c/Ünï.txt"), std::pair("//srv/share/b.txt", "s/b.txt")}) {
        const std::string target = drives.MakeFile(file);
        EXPECT_EQ(Run(CreateAlias, {TextValue(path), TextValue("/C:/link")}), "");
        EXPECT_EQ(Run(OpenItem, {TextValue("/C:/link.lnk")}), "");
        EXPECT_EQ(ReadBytes(drives.Path("opened")), target);
    }
    EXPECT_EQ(win32::DecodeShellLink(ReadBytes(c + "/link.lnk"))->target, u"\\\\srv\\share\\b.txt");
    std::filesystem::remove(drives.Path("s/b.txt"));
    EXPECT_EQ(Run(OpenItem, {TextValue("/C:/link.lnk")}), "$-34:OpenItem failed");
}

TEST_F(FileFunctions, FailuresLeaveNoDescriptorOpen) {
    drives.MakeFolder("c/folder/sub");
    const FM_Data gone = TextValue("/C:/gone/x");
    const FM_Data folder = TextValue("/C:/folder");
    ASSERT_EQ(mkfifo((c + "/fifo").c_str(), 0600), 0);
    const auto descriptors = test::CountOpenDescriptors();
    const auto objects = fm::LiveObjects();
    for (int i = 0; i < 1'250; ++i) {
        EXPECT_NE(Run(CopyItem, {folder, TextValue("/C:/folder/sub"), NumberValue("1")}), "");
        EXPECT_NE(Run(CopyItem, {gone, folder, NumberValue("1")}), "");
        EXPECT_NE(Run(CopyItem, {TextValue("/C:/fifo"), folder, NumberValue("1")}), "");
        EXPECT_NE(Run(MoveItem, {folder, TextValue("/C:/folder/sub")}), "");
        EXPECT_NE(Run(DeleteItem, {gone, NumberValue("1")}), "");
        EXPECT_NE(Run(RenameItem, {folder, TextValue("a/b")}), "");
        EXPECT_NE(Run(CreateFolder, {folder, TextValue("sub")}), "");
        EXPECT_NE(Run(ListFolder, {gone, NumberValue("1")}), "");
        EXPECT_NE(Run(CreateAlias, {folder, gone}), "");
    }
    EXPECT_EQ(test::CountOpenDescriptors(), descriptors);
    EXPECT_LE(fm::LiveObjects(), objects);
}

} // namespace
