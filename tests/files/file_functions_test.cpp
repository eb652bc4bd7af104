// The file functions as the host calls them. Most of their behaviour is tested by calculations; here stands
// what those can't reach: faults, export mode, descriptors.
#include "files/functions.h"

#include "files/default_folder.h"
#include "files/numbered_files.h"
#include "platform/fmwrapper/fault.h"
#include "platform/win32/shell_link.h"
#include "tests/support/calls.h"
#include "tests/support/environment_variable.h"
#include "tests/support/fake_host.h"
#include "tests/support/files.h"
#include "tests/support/small_disk.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

namespace {

using namespace corvane;
using test::Call;
using test::IsThere;
using test::NumberValue;
using test::ReadBytes;
using test::TextValue;

struct FileFunctions : testing::Test {
    FileFunctions() {
        c = drives.Map("C:", "c");
        ResetDefaultFolder();
    }
    static std::string Run(FM_ExternalFunction function, std::initializer_list<FM_Data> values) {
        const test::Outcome outcome = Call(function, values);
        EXPECT_EQ(outcome.error, 0);
        return outcome.text;
    }
    test::FakeHost host;
    test::ScratchDrives drives;
    std::string c;
};

TEST_F(FileFunctions, ExportModeCompletesTheNameOnce) {
    drives.MakeFile("c/source.jpg", "1");
    drives.MakeFolder("c/out");
    const auto copy = [](const char* target) {
        return Run(CopyItem, {TextValue("/C:/source.jpg"), TextValue(target), NumberValue("0")});
    };
    SetExportMode();
    EXPECT_EQ(copy("/C:/out/plain"), "");
    EXPECT_TRUE(IsThere(c + "/out/plain.jpg"));
    EXPECT_EQ(copy("/C:/out/plain"), "");
    EXPECT_TRUE(IsThere(c + "/out/plain"));
    SetExportMode();
    EXPECT_EQ(copy("/C:/out/plain"), "$7:CopyItem failed"); // on plain.jpg; plain itself is a file now
    SetExportMode();
    EXPECT_EQ(copy("/C:/out/other.png"), "");
    EXPECT_TRUE(IsThere(c + "/out/other.png"));
    SetExportMode();
    EXPECT_EQ(copy("/C:/gone/x"), "$-120:CopyItem failed");
    EXPECT_EQ(copy("/C:/out/last"), "");
    EXPECT_TRUE(IsThere(c + "/out/last"));
}

TEST_F(FileFunctions, AFailedCallGivesTheDefaultFolderBack) {
    drives.MakeFolder("c/folder");
    drives.MakeFile("c/file");
    EXPECT_EQ(Run(SetDefaultFolder, {TextValue("/C:/folder")}), "");
    for (const char* path : {"/C:/file", "../gone", ".x", "/Q:/"})
        EXPECT_NE(Run(SetDefaultFolder, {TextValue(path)}), "");
    EXPECT_EQ(Run(SetDefaultFolder, {NumberValue("1")}), "$20102:Parameter (path) must be text");
    EXPECT_EQ(Run(SetDefaultFolder, {TextValue(".U")}), "$0:Cancel");
    EXPECT_EQ(Run(GetDefaultFolder, {}), "/C:/folder");
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

TEST_F(FileFunctions, FullAndReadOnlyDisks) {
    const test::SmallDisk disk(drives.MakeFolder("c/disk"), "64k");
    if (!disk.IsMounted()) GTEST_SKIP() << "mounting a file system is not permitted";
    drives.MakeFile("c/large", std::string(200'000, 'x'));
    drives.MakeFile("c/disk/file");
    const FM_Data large = TextValue("/C:/large");
    const FM_Data file = TextValue("/C:/disk/file");
    const FM_Data folder = TextValue("/C:/disk");
    EXPECT_EQ(Run(CopyItem, {large, folder, NumberValue("1")}), "$112:CopyItem failed");
    EXPECT_EQ(Run(MoveItem, {large, folder}), "$112:MoveItem failed");
    EXPECT_EQ(test::CountEntries(c + "/disk"), 1);
    ASSERT_TRUE(disk.MakeReadOnly());
    EXPECT_EQ(Run(DeleteItem, {file, NumberValue("0")}), "$19:DeleteItem failed");
    EXPECT_EQ(Run(RenameItem, {file, TextValue("x")}), "$19:RenameItem failed");
    EXPECT_EQ(Run(CreateFolder, {folder, TextValue("x")}), "$19:CreateFolder failed");
    EXPECT_EQ(Run(MoveItem, {file, TextValue("/C:")}), "$19:MoveItem failed");
    EXPECT_EQ(Run(CreateAlias, {file, TextValue("/C:/disk/a")}).substr(0, 2), "$-");
}

TEST_F(FileFunctions, FailuresLeaveNoDescriptorOpen) {
    drives.MakeFolder("c/folder/sub");
    const FM_Data gone = TextValue("/C:/gone/x");
    const FM_Data folder = TextValue("/C:/folder");
    const auto descriptors = test::CountOpenDescriptors();
    const auto objects = fm::LiveObjects();
    for (int i = 0; i < 1'250; ++i) {
        EXPECT_NE(Run(CopyItem, {folder, TextValue("/C:/folder/sub"), NumberValue("1")}), "");
        EXPECT_NE(Run(CopyItem, {gone, folder, NumberValue("1")}), "");
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
