// The program with windows, and what it does where there are none.
#include "tests/support/fake_host.h"
#include "tests/support/files.h"
#include "tests/ui/virtual_display.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <sys/wait.h>
#include <vector>

// For the leak sanitizer, where it is built in.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer looks for this name
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_options() {
    return LEAK_OPTIONS;
}

namespace {

using corvane::test::Person;
using corvane::test::VirtualDisplay;

class ProgramWindows : public testing::Test {
protected:
    // The calculation's result, without its line end; what the program says besides is in errors_. The
    // program is stopped after two minutes.
    std::string Evaluate(const std::string& options, const std::string& calculation,
                         const std::string& environment = {}) {
        const std::string output = drives_.Path("output");
        const std::string errors = drives_.Path("errors");
        const std::string command = "cd '" + drives_.Path("") +
                                    "' && timeout 120 env LSAN_OPTIONS=" LEAK_OPTIONS " " + environment +
                                    " '" CORVANE_PROGRAM "' eval " + options + " '" + calculation + "' >'" +
                                    output + "' 2>'" + errors + "'";
        const int status = std::system(command.c_str());
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << command;
        errors_ = corvane::test::ReadBytes(errors);
        std::string text = corvane::test::ReadBytes(output);
        while (text.ends_with('\n')) text.pop_back();
        return text;
    }

    corvane::test::ScratchDrives drives_;
    std::string errors_;
};

TEST_F(ProgramWindows, DialogsOfCalculations) {
    const VirtualDisplay display;
    {
        const Person person("JPEG Options", "xdotool key alt+q ctrl+a type 1000; xdotool key Return");
        EXPECT_NE(Evaluate("--ui gtk", R"(Media_ConversionDialog ( "JPEG" ))").find("quality=1000"),
                  std::string::npos);
    }
    EXPECT_EQ(errors_, "");
    const std::string folder = drives_.MakeFolder("Some folder");
    drives_.MakeFile("Some folder/sea.jpg");
    {
        const Person person("Where is it.",
                            "xdotool key ctrl+l; xdotool type '" + folder + "'; xdotool key Return");
        EXPECT_EQ(Evaluate("", R"(Media_SetDefaultFolder ( ".u:Where is it?" ) & Media_GetDefaultFolder)"),
                  "/C:" + folder);
    }
    const Person person("Pick a file", "xdotool key Escape");
    EXPECT_EQ(Evaluate("", R"(Media_SetDefaultFolder ( ".v:Pick a file" ))"), "$0:Cancel");
}

TEST_F(ProgramWindows, TheSoundFormatDialogPlaysItsSound) {
    const VirtualDisplay display;
    const std::string played = drives_.Path("played.raw");
    {
        const Person person("Wave Settings", "xdotool key alt+p; timeout 60 sh -c 'until [ -s \"" + played +
                                                 "\" ]; do sleep 0.1; done' && xdotool key Return");
        const std::string settings = Evaluate("--ui gtk", R"(Media_SoundFormatDialog ( "WAVE" ))",
                                              "SDL_AUDIODRIVER=disk SDL_DISKAUDIOFILE=" + played);
        EXPECT_TRUE(settings.starts_with("<hex>") && settings.ends_with("</hex>")) << settings;
    }
    const std::string bytes = corvane::test::ReadBytes(played);
    std::vector<float> samples(bytes.size() / sizeof(float));
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
    const auto heard = std::ranges::count_if(samples, [](float sample) { return std::abs(sample) > 0.1F; });
    EXPECT_GT(heard, 2 * 44'100 / 4) << "three notes take half a second";
}

TEST_F(ProgramWindows, WithoutADisplayTheScriptAnswers) {
    setenv("DISPLAY", ":31999", 1);
    const std::string calculation = R"(Media_SetDefaultFolder ( ".u" ))";
    EXPECT_EQ(Evaluate("--ui gtk", calculation), "$0:Cancel");
    EXPECT_EQ(errors_, "corvane: no windows: the display :31999 can't be opened\n");
    EXPECT_EQ(Evaluate("--answer 'folder:C:\\tmp'", calculation), "");
    unsetenv("DISPLAY");
    EXPECT_EQ(Evaluate("--ui gtk", calculation), "$0:Cancel");
    EXPECT_EQ(errors_, "corvane: no windows: there is no display; DISPLAY is not set\n");
    EXPECT_EQ(Evaluate("", calculation), "$0:Cancel");
    EXPECT_EQ(errors_, "");
}

TEST_F(ProgramWindows, ADisplayThatGoesAwayCancels) {
    auto display = std::make_unique<VirtualDisplay>();
    {
        // The text of a field is selected, which its window would tell the display when it is taken down.
        const Person person("JPEG Options",
                            "xdotool key alt+q; sleep 1; kill " + std::to_string(display->Process()));
        // The second dialog finds no display, and takes the script's answer.
        const std::string dialog = R"(Media_ConversionDialog ( "JPEG" ))";
        EXPECT_EQ(Evaluate("--ui gtk --answer set:quality=900", dialog + R"( & "|" & )" + dialog),
                  "format=JPEG\nquality=512\nmethod=0\n|format=JPEG\nquality=900\nmethod=0");
    }
    EXPECT_EQ(errors_, "corvane: no windows: the display was lost\n");
}

// The module alone is linked with the window library, and is not loaded for a script.
TEST_F(ProgramWindows, NoWindowLibraryWithoutWindows) {
    const VirtualDisplay display;
    const std::string calculation = R"(Media_ConversionDialog ( "JPEG" ))";
    const std::string list_of_files = "LD_DEBUG=files";
    Evaluate("--ui none --answer ok", calculation, list_of_files);
    EXPECT_NE(errors_.find("libcorvane.so"), std::string::npos);
    EXPECT_EQ(errors_.find("libgtk"), std::string::npos);
    EXPECT_EQ(errors_.find("corvane-windows.so"), std::string::npos);
    EXPECT_EQ(errors_.find("libX11"), std::string::npos);
    {
        const Person person("JPEG Options", "xdotool key Return");
        Evaluate("--ui gtk", calculation, list_of_files);
    }
    EXPECT_NE(errors_.find("libgtk"), std::string::npos) << "the check finds what it looks for";
}

} // namespace
