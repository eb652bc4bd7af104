// The real windows, worked with from the keyboard.
#include "platform/text/utf.h"
#include "platform/win32/dialogs.h"
#include "platform/win32/keyboard.h"
#include "platform/win32/message_box.h"
#include "platform/win32/settings_dialog.h"
#include "platform/win32/windows_module.h"
#include "tests/support/fake_host.h"
#include "tests/support/files.h"
#include "tests/ui/virtual_display.h"
#include "ui/standard_alert.h"

#include <array>
#include <chrono>
#include <cstdlib>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace {

using corvane::test::Person;
using win32::SettingControl;
using win32::SettingsDialog;
using win32::SettingValues;

// The library stays with the display that it opened first.
void OpenTheDisplay() {
    static const corvane::test::VirtualDisplay display;
}

class Windows : public testing::Test {
protected:
    Windows() {
        OpenTheDisplay();
        folder_ = drives_.Map("C:", "c");
        drives_.MakeFile("c/Data/sea.jpg");
        drives_.MakeFile("c/Data/täg.wav");
        drives_.MakeFile("elsewhere/x.jpg");
        fm::CurrentSession().windows = true;
        fm::CurrentSession().answers = {"cancel", "cancel"};
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(2);
        fm::CurrentSession().dispatch_messages = [this, end] {
            ++pumped_;
            if (std::chrono::steady_clock::now() > end) throw std::runtime_error("nobody closes the window");
        };
        testing::internal::CaptureStderr();
    }
    ~Windows() override {
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_EQ(fm::CurrentSession().answers.size(), 2U) << "a person answers, not the script";
    }

    corvane::test::ScratchDrives drives_;
    // Shell commands that wait for the file which the test makes under this name.
    [[nodiscard]] std::string WaitFor(const std::string& name) const {
        return "until [ -e '" + drives_.Path(name) + "' ]; do sleep 0.1; done; ";
    }

    std::string folder_;
    int pumped_ = 0;
};

TEST_F(Windows, AlertClosesByReturnEscapeAndMnemonic) {
    for (const char* key : {"Return", "Escape", "alt+o"}) {
        const Person person("Corvane 10", std::string("sleep 0.1; xdotool key ") + key);
        EXPECT_EQ(MessageBoxA(nullptr, "Corvane 10   FMP 10.0v1\n\n5|1|2", "Corvane 10",
                              MB_OK | MB_ICONINFORMATION | MB_SYSTEMMODAL | MB_SETFOREGROUND),
                  IDOK);
    }
    EXPECT_GT(pumped_, 10) << "timers stand still while an alert is open";
    {
        const Person person("Long", "xdotool key Return");
        win32::ShowAlert("Long", std::string(100'000, 'm') + "\xFF", "OK");
    }
    const Person person("QuickTime too old!", "xdotool key alt+c");
    corvane::NewStandardAlert(
        "QuickTime too old!",
        "The plug-in needs a newer version, <b> or _not_. You can obtain it at "
        "http://www.example.com/download, or ask the person who looks after this machine.",
        "Cancel")
        ->Run();
}

std::u16string OpenFile(DWORD capacity, const WCHAR* title, DWORD flags) {
    std::array<WCHAR, MAX_PATH> path{};
    OPENFILENAMEW dialog;
    dialog.lpstrFile = path.data();
    dialog.nMaxFile = capacity;
    dialog.lpstrTitle = title;
    dialog.lpstrButton = u"Import";
    dialog.lpstrInitialDir = u"C:\\data";
    dialog.Flags = flags;
    return GetOpenFileNameW(&dialog) == FALSE ? u"cancelled" : path.data();
}

TEST_F(Windows, OpenFileBeginsInItsFolder) {
    for (const std::string key : {"Return", "alt+i"}) {
        const Person person("Insert QuickTime", "xdotool key ctrl+l type sea.jpg; xdotool key " + key);
        EXPECT_EQ(OpenFile(MAX_PATH, u"Insert QuickTime", OFN_FILEMUSTEXIST), u"C:\\Data\\sea.jpg");
    }
    const Person person("Open", "xdotool key Escape");
    EXPECT_EQ(OpenFile(MAX_PATH, nullptr, 0), u"cancelled");
}

TEST_F(Windows, OpenFileRefusesWhatHasNoNativePath) {
    const std::string outside = drives_.Path("elsewhere/x.jpg");
    const std::string choose = "xdotool key ctrl+l; xdotool type --delay 20 ";
    const std::string confirm = "; sleep 0.5; xdotool key Return; sleep 2; ";
    const Person person("Open", choose + outside + confirm +                       //
                                    choose + folder_ + "/Data/täg.wav" + confirm + // too long
                                    choose + folder_ + "/Data/x" + confirm + "true");
    drives_.MakeFile("c/Data/x");
    EXPECT_EQ(OpenFile(10, nullptr, 0), u"C:\\Data\\x");
}

TEST_F(Windows, ChoosesFolders) {
    BROWSEINFOW dialog;
    dialog.lpszTitle = u"Where to?";
    {
        const Person person("Where to.", "xdotool key ctrl+l type " + folder_ + "/Data; xdotool key Return");
        EXPECT_EQ(win32::BrowseForFolder(dialog), u"C:\\Data");
    }
    const std::u16string long_title(1'000'000, u'x');
    dialog.lpszTitle = long_title.c_str();
    {
        const Person person("xxx.*", "xdotool key Escape");
        EXPECT_FALSE(win32::BrowseForFolder(dialog));
    }
    const Person person("Choose Folder", "xdotool key alt+c");
    EXPECT_FALSE(win32::BrowseForFolder({}));
}

SettingsDialog SampleDialog() {
    using enum SettingControl::Kind;
    const SettingControl radius = {"radius", "Radius", kNumber, "2.5", 0, 100, 0.1, "pixels", {}};
    const SettingControl method = {
        "method", "Method", kChoice, "8", 0, 0, 1, "", {{"1", "None"}, {"5", "LZW"}, {"8", "Deflate"}}};
    const SettingControl edges = {"edges", "Keep edges", kToggle, "0", 0, 0, 1, "", {}};
    const SettingControl colour = {"colour", "Background", kColour, "#1A80ff", 0, 0, 1, "", {}};
    const SettingControl note = {"note", "Note", kText, "a", 0, 0, 1, "", {}};
    const SettingControl count = {"count", "Number", kNumber, "7", 1, 4'000'000'000.0, 1, "", {}};

    SettingsDialog dialog;
    dialog.title = "Effects";
    dialog.pages = {{"blur", "Gaussian Blur", {radius, method, edges, colour, note}},
                    {"none", "Solarise", {}},
                    {"tile", "Tiles", {count}}};
    dialog.page_key = "effect";
    dialog.page_label = "Effect";
    return dialog;
}

TEST_F(Windows, SettingsAreAnsweredAsShownAndAsChanged) {
    SettingValues expected = {{"effect", "blur"}, {"radius", "2.5"},     {"method", "8"},
                              {"edges", "0"},     {"colour", "#1a80ff"}, {"note", "a"}};
    {
        const Person person("Effects", "xdotool key Return");
        EXPECT_EQ(win32::AskForSettings(SampleDialog()), expected);
    }
    const Person person("Effects", "xdotool key alt+r ctrl+a type 300.25; " // beyond the range
                                   "xdotool key alt+k alt+m Up alt+n ctrl+a; "
                                   "xdotool type 'b, c=d'; xdotool key Return");
    expected = {{"effect", "blur"}, {"radius", "100"},     {"method", "5"},
                {"edges", "1"},     {"colour", "#1a80ff"}, {"note", "b, c=d"}};
    EXPECT_EQ(win32::AskForSettings(SampleDialog()), expected);
}

TEST_F(Windows, SettingsOfAnotherPage) {
    // Return in the box of pages confirms; what was typed last counts.
    const Person person("Effects",
                        "xdotool key alt+e Down Down alt+n ctrl+a type 123456789; xdotool key alt+o");
    const SettingValues expected = {{"effect", "tile"}, {"count", "123456789"}};
    EXPECT_EQ(win32::AskForSettings(SampleDialog()), expected);

    SettingsDialog dialog = SampleDialog();
    dialog.page = 1;
    const Person another("Effects", "xdotool key alt+e Return");
    EXPECT_EQ(win32::AskForSettings(dialog), (SettingValues{{"effect", "none"}}));
}

TEST_F(Windows, SettingsAreCancelled) {
    for (const char* key : {"Escape", "alt+c"}) {
        const Person person("Effects", std::string("xdotool key ") + key);
        EXPECT_FALSE(win32::AskForSettings(SampleDialog()));
    }
}

TEST_F(Windows, PreviewFollowsTheSettings) {
    SettingsDialog dialog = SampleDialog();
    int shown = 0;
    dialog.preview = [&](const SettingValues& values) {
        drives_.MakeFile("shown" + values[1].second);
        std::vector<std::uint8_t> grey(3 * 180 * 180, 128);
        return ++shown == 1 ? win32::SettingsPreview{180, 180, std::move(grey)} : win32::SettingsPreview();
    };
    SettingValues tried;
    dialog.action_label = "Try";
    dialog.action = [&](const SettingValues& values) {
        tried = values;
        drives_.MakeFile("tried");
    };
    const Person person("Effects",
                        WaitFor("shown2.5") + "xdotool key alt+r ctrl+a type 7; xdotool key Tab; " +
                            WaitFor("shown7") + "xdotool key alt+r ctrl+a type 9; xdotool key alt+t; " +
                            WaitFor("tried") + "xdotool key Escape");
    EXPECT_FALSE(win32::AskForSettings(dialog));
    ASSERT_FALSE(tried.empty());
    EXPECT_EQ(tried[1].second, "9") << "typed and not yet confirmed";
}

TEST_F(Windows, DialogsNestAndFailuresPass) {
    SettingsDialog dialog = SampleDialog();
    dialog.action_label = "Try";
    dialog.action = [](const SettingValues&) {
        win32::ShowAlert("Inside", "One window over another.", "Close");
        throw std::runtime_error("told to fail");
    };
    const Person outer("Effects", "xdotool key alt+t");
    const Person inner("Inside", "xdotool key Return");
    EXPECT_THROW(win32::AskForSettings(dialog), std::runtime_error);
}

TEST_F(Windows, PointerAndWindowInFront) {
    const win32::WindowsModule* windows = win32::OpenWindows();
    ASSERT_NE(windows, nullptr);
    EXPECT_FALSE(windows->pointer_and_window().value().window) << "no window is open";
    SettingsDialog dialog = SampleDialog();
    std::optional<win32::PointerAndWindow> desk;
    dialog.action_label = "Try";
    dialog.action = [&](const SettingValues&) {
        desk = windows->pointer_and_window();
        drives_.MakeFile("read");
    };
    const std::string geometry = drives_.Path("geometry");
    const Person person("Effects", "xdotool mousemove 321 234 key alt+t; "
                                   "xdotool getwindowgeometry --shell $WINDOW >" +
                                       geometry + "; " + WaitFor("read") + "xdotool key Escape");
    EXPECT_FALSE(win32::AskForSettings(dialog));
    ASSERT_TRUE(desk && desk->window);
    EXPECT_EQ(desk->pointer.x, 321);
    EXPECT_EQ(desk->pointer.y, 234);
    const auto [left, top, right, bottom] = *desk->window;
    const std::string expected = "\nX=" + std::to_string(left) + "\nY=" + std::to_string(top) +
                                 "\nWIDTH=" + std::to_string(right - left) +
                                 "\nHEIGHT=" + std::to_string(bottom - top) + "\n";
    const std::string told = corvane::test::ReadBytes(geometry);
    EXPECT_NE(told.find(expected), std::string::npos) << told << expected;
}

TEST_F(Windows, TheWindowInFrontHasItsFrame) {
    const win32::WindowsModule* windows = win32::OpenWindows();
    ASSERT_NE(windows, nullptr);
    {
        const auto window = corvane::test::ShowManagedWindow({100, 80, 400, 280}, {3, 25, 4, 6});
        const auto frame = windows->pointer_and_window().value().window;
        ASSERT_TRUE(frame);
        const auto [left, top, right, bottom] = *frame;
        EXPECT_EQ((std::array{left, top, right, bottom}), (std::array{97, 55, 404, 286}));
    }
    EXPECT_FALSE(windows->pointer_and_window().value().window);
}

TEST_F(Windows, KeysAndButtonsThatAreDown) {
    const auto type = [](const std::string& commands) {
        EXPECT_EQ(std::system(("xdotool " + commands).c_str()), 0);
    };
    const auto down = [] {
        std::vector<int> keys;
        for (const int key : {VK_LBUTTON, VK_RBUTTON, VK_CONTROL, VK_ESCAPE, VK_OEM_PERIOD})
            if (GetAsyncKeyState(key) < 0) keys.push_back(key);
        return keys;
    };
    EXPECT_EQ(down(), std::vector<int>());
    type("keydown Escape mousedown 3");
    EXPECT_EQ(down(), std::vector<int>({VK_RBUTTON, VK_ESCAPE}));
    type("keyup Escape mouseup 3 mousedown 1 keydown ctrl keydown period");
    EXPECT_EQ(down(), std::vector<int>({VK_LBUTTON, VK_CONTROL, VK_OEM_PERIOD}));
    type("mouseup 1 keyup ctrl keyup period");
    EXPECT_EQ(down(), std::vector<int>());
}

// A process of its own, whose display goes away.
[[noreturn]] void LoseTheDisplay() {
    const corvane::test::VirtualDisplay display;
    fm::CurrentSession().windows = true;
    {
        const Person person("Going", "kill " + std::to_string(display.Process()));
        win32::ShowAlert("Going", "One", "OK");
    }
    win32::ShowAlert("Gone", "Two", "OK");
    std::_Exit(testing::Test::HasFailure() ? 1 : 0);
}

TEST(WindowsDeathTest, AlertsOfALostDisplayGoToStandardError) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        LoseTheDisplay(), testing::ExitedWithCode(0),
        "^corvane: no windows: the display was lost\nalert: Going: One .OK.\nalert: Gone: Two .OK.\n$");
}

} // namespace
