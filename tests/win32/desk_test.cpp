// What the platform knows of the desk: folders, versions, strings, alerts and dialogs.
#include "platform/win32/dialogs.h"
#include "platform/win32/folders.h"
#include "platform/win32/message_box.h"
#include "platform/win32/strings.h"
#include "platform/win32/version.h"
#include "tests/support/drive_test.h"
#include "tests/support/environment_variable.h"
#include "tests/win32/error_of.h"

#include <array>
#include <gtest/gtest.h>
#include <string_view>

namespace {

using namespace std::string_view_literals;
using corvane::test::EnvironmentVariable;

struct Desk : corvane::test::DriveTest {};

TEST_F(Desk, TemporaryFolder) {
    std::array<WCHAR, 300> path{};
    {
        const EnvironmentVariable temporary("TMPDIR", c + "/tmp/../Täg/");
        EXPECT_EQ(GetTempPathW(300, path.data()), 7U);
        EXPECT_EQ(std::u16string_view(path.data()), u"C:\\Täg\\");
        path.fill(u'x');
        EXPECT_EQ(GetTempPathW(7, path.data()), 8U) << "the room that it needs";
        EXPECT_EQ(path[0], u'x');
    }
    const EnvironmentVariable outside("TMPDIR", "/outside");
    EXPECT_EQ(ErrorOf(GetTempPathW(300, path.data())), ERROR_PATH_NOT_FOUND);
}

TEST_F(Desk, DesktopFolderOfTheUsersList) {
    const EnvironmentVariable home("HOME", c);
    const EnvironmentVariable configuration("XDG_CONFIG_HOME", std::nullopt);
    const auto desktop = [] {
        std::array<WCHAR, MAX_PATH> path{};
        const HRESULT result = SHGetFolderPathW(nullptr, CSIDL_DESKTOPDIRECTORY, nullptr, 0, path.data());
        return result == S_OK ? std::u16string(path.data()) : u"none";
    };
    EXPECT_EQ(desktop(), u"C:\\Desktop");
    drives.MakeFile("c/.config/user-dirs.dirs", "# XDG_DESKTOP_DIR=\"/no\"\nXDG_MUSIC_DIR=\"$HOME/M\"\n  "
                                                "XDG_DESKTOP_DIR=\"$HOME/Schreib\\$tisch\"\n");
    EXPECT_EQ(desktop(), u"C:\\Schreib$tisch");
    const EnvironmentVariable other("XDG_CONFIG_HOME", c + "/other");
    drives.MakeFile("c/other/user-dirs.dirs", "XDG_DESKTOP_DIR=\"" + c + "/elsewhere\"");
    EXPECT_EQ(desktop(), u"C:\\elsewhere");
    drives.MakeFile("c/other/user-dirs.dirs", "XDG_DESKTOP_DIR=\"/outside\"\n");
    EXPECT_EQ(desktop(), u"none");
}

TEST_F(Desk, ApplicationFileAndItsVersion) {
    fm::Session& session = fm::CurrentSession();
    session.application_file = c + "/bin/hôst";
    session.application_version = "10.0v1";
    std::array<char, 64> path{};
    EXPECT_EQ(GetModuleFileNameA(nullptr, path.data(), 64), 12U);
    EXPECT_STREQ(path.data(), "C:\\bin\\hôst");
    std::array<char, 64> cut{};
    EXPECT_EQ(GetModuleFileNameA(nullptr, cut.data(), 10), 10U);
    EXPECT_STREQ(cut.data(), "C:\\bin\\h") << "not inside a character";
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);

    const DWORD size = GetFileVersionInfoSizeA(path.data(), nullptr);
    ASSERT_GT(size, 0U);
    std::string block(size, 'x');
    ASSERT_TRUE(GetFileVersionInfoA(path.data(), 0, size, block.data()));
    void* value = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueA(block.data(), "\\StringFileInfo\\000004B0\\FileVersion", &value, &length));
    EXPECT_EQ(std::string_view(static_cast<const char*>(value), length), "10.0v1\0"sv);
    EXPECT_FALSE(VerQueryValueA(block.data(), "\\StringFileInfo\\000904E4\\FileVersion", &value, &length));

    EXPECT_EQ(ErrorOf(GetFileVersionInfoSizeA("C:\\bin\\other", nullptr)), ERROR_RESOURCE_DATA_NOT_FOUND);
    session.application_file = "/opt/outside/host";
    EXPECT_GT(GetModuleFileNameA(nullptr, path.data(), 64), 0U);
    EXPECT_GT(GetFileVersionInfoSizeA(path.data(), nullptr), 0U) << "a host outside the drives has a version";
}

TEST(Strings, AreCutToTheBuffer) {
    constexpr std::array<win32::StringResource, 2> kStrings = {{{1, u"Corvane"}, {203, u""}}};
    int library = 0;
    win32::SetStringResources(&library, kStrings);
    std::array<WCHAR, 8> buffer{};
    EXPECT_EQ(LoadStringW(&library, 1, buffer.data(), 8), 7);
    EXPECT_EQ(std::u16string_view(buffer.data()), u"Corvane");
    EXPECT_EQ(LoadStringW(&library, 1, buffer.data(), 5), 4);
    EXPECT_EQ(std::u16string_view(buffer.data()), u"Corv");
    EXPECT_EQ(ErrorOf(LoadStringW(&library, 2, buffer.data(), 8)), ERROR_RESOURCE_NAME_NOT_FOUND);
    EXPECT_EQ(std::u16string_view(buffer.data()), u"");
    EXPECT_EQ(LoadStringW(&buffer, 1, buffer.data(), 8), 0) << "another library's table";
    buffer[0] = u'x';
    EXPECT_EQ(LoadStringW(&library, 1, buffer.data(), 0), 0);
    EXPECT_EQ(buffer[0], u'x');
}

TEST_F(Desk, AlertsGoToStandardErrorAndTakeNoAnswer) {
    fm::CurrentSession().answers = {"cancel"};
    testing::internal::CaptureStderr();
    EXPECT_EQ(MessageBoxA(nullptr, "It is done.", "Corvane 10", MB_OK), IDOK);
    EXPECT_EQ(win32::ShowAlert("Too old!", "Märchen", "Cancel"), IDOK);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "alert: Corvane 10: It is done. [OK]\nalert: Too old!: Märchen [Cancel]\n");
    EXPECT_EQ(fm::CurrentSession().answers.size(), 1U);
}

TEST_F(Desk, DialogsTakeTheAnswersInOrder) {
    fm::CurrentSession().answers = {"file:C:\\ä.jpg", "file:C:\\Data", "folder:C:\\Data",
                                    "file:", "file:C:\\1234567"};
    std::array<WCHAR, 10> path{};
    OPENFILENAMEW dialog;
    dialog.lpstrFile = path.data();
    dialog.nMaxFile = 10;
    EXPECT_TRUE(GetOpenFileNameW(&dialog));
    EXPECT_EQ(std::u16string_view(path.data()), u"C:\\ä.jpg");
    EXPECT_FALSE(win32::BrowseForFolder({})) << "an answer of another kind is used up as Cancel";
    EXPECT_EQ(win32::BrowseForFolder({}), u"C:\\Data");
    EXPECT_FALSE(GetOpenFileNameW(&dialog)) << "no path";
    EXPECT_FALSE(GetOpenFileNameW(&dialog)) << "one unit too long for the buffer";
}

} // namespace
