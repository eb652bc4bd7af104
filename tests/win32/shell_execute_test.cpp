#include "platform/win32/shell_execute.h"

#include "platform/win32/shell_link.h"
#include "tests/support/drive_test.h"
#include "tests/support/environment_variable.h"
#include "tests/support/files.h"

#include <chrono>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

namespace {

struct ShellExecute : corvane::test::DriveTest {
    // An opener that notes its argument and runs `command`.
    std::string MakeOpener(const std::string& command = "") {
        std::string path = drives.MakeFile("opener", "#!/bin/sh\nprintf %s \"$#:$1\" > '" +
                                                         drives.Path("opened") + "'\n" + command);
        chmod(path.c_str(), 0755);
        return path;
    }
    std::string TakeOpened() {
        const std::string path = drives.Path("opened");
        std::string text = corvane::test::ReadBytes(path);
        std::filesystem::remove(path);
        return text;
    }
    static std::intptr_t Open(const char16_t* path) {
        return reinterpret_cast<std::intptr_t>(ShellExecuteW(path));
    }

    corvane::test::EnvironmentVariable opener{"CORVANE_OPENER", std::nullopt};
};

TEST_F(ShellExecute, HandsTheItemOver) {
    opener.Set(MakeOpener());
    drives.MakeFile("c/It's $HOME.txt");
    EXPECT_GT(Open(u"C:\\it's $home.TXT"), 32);
    EXPECT_EQ(TakeOpened(), "1:" + c + "/It's $HOME.txt");
    EXPECT_GT(Open(u"C:\\"), 32);
    EXPECT_EQ(TakeOpened(), "1:" + c);
    EXPECT_EQ(Open(u"C:\\gone"), 2);
    EXPECT_EQ(Open(u"C:\\gone\\x"), 3);
    EXPECT_EQ(Open(u"C:\\a?b"), SE_ERR_NOASSOC);
    EXPECT_EQ(TakeOpened(), "");
}

TEST_F(ShellExecute, FollowsShortcuts) {
    opener.Set(MakeOpener());
    drives.MakeFile("c/target");
    drives.MakeFile("c/damaged.lnk", "L");
    ASSERT_EQ(win32::SaveShellLink({u"C:\\target", u""}, u"C:\\one.lnk"), 0);
    ASSERT_EQ(win32::SaveShellLink({u"C:\\one.lnk", u""}, u"C:\\two.LNK"), 0);
    ASSERT_EQ(win32::SaveShellLink({u"C:\\loop.lnk", u""}, u"C:\\loop.lnk"), 0);
    ASSERT_EQ(win32::SaveShellLink({u"C:\\gone", u""}, u"C:\\dead.lnk"), 0);
    EXPECT_GT(Open(u"C:\\two.lnk"), 32);
    EXPECT_EQ(TakeOpened(), "1:" + c + "/target");
    EXPECT_EQ(Open(u"C:\\loop.lnk"), SE_ERR_NOASSOC);
    EXPECT_EQ(Open(u"C:\\damaged.lnk"), SE_ERR_NOASSOC);
    EXPECT_EQ(Open(u"C:\\dead.lnk"), 2);
    EXPECT_EQ(TakeOpened(), "");
}

TEST_F(ShellExecute, ProgramsThatFailOrStay) {
    drives.MakeFile("c/file");
    opener.Set("/nowhere/opener");
    EXPECT_EQ(Open(u"C:\\file"), SE_ERR_NOASSOC);
    opener.Set(MakeOpener("exit 3"));
    EXPECT_EQ(Open(u"C:\\file"), SE_ERR_NOASSOC);
    opener.Set(MakeOpener("sleep 4"));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_GT(Open(u"C:\\file"), 32);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
}

} // namespace
