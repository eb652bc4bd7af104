// Start-up against a media layer that fails on demand: this file stands in for the real one's start.
#include "platform/quicktime/movie_toolbox.h"
#include "plugin/drawing_port.h"
#include "tests/plugin/started_host.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct FakeToolbox {
    OSErr layer = 0;
    OSErr toolbox = 0;
    OSErr gestalt = 0;
    std::int32_t version = 0x07000000;
    std::string calls;
};

FakeToolbox g_toolbox;

} // namespace

OSErr InitializeQTML(std::int32_t) {
    g_toolbox.calls += "layer ";
    return g_toolbox.layer;
}

OSErr EnterMovies() {
    g_toolbox.calls += "movies ";
    return g_toolbox.toolbox;
}

void ExitMovies() {
    g_toolbox.calls += "-movies ";
}

void TerminateQTML() {
    g_toolbox.calls += "-layer ";
}

OSErr Gestalt(OSType, std::int32_t* response) {
    if (g_toolbox.gestalt == 0) *response = g_toolbox.version;
    return g_toolbox.gestalt;
}

namespace corvane {
namespace {

class QuickTimeStart : public testing::Test {
protected:
    QuickTimeStart() { g_toolbox = {}; }

    // The answer of start-up; what it showed is in `alert`.
    std::intptr_t StartUp() {
        testing::internal::CaptureStderr();
        const std::intptr_t answer = host.StartUp();
        alert = testing::internal::GetCapturedStderr();
        return answer;
    }

    test::EntryHost host;
    std::string alert;
};

constexpr const char* kNotInstalled =
    "alert: QuickTime is not installed.: Corvane requires QuickTime. Please (re)install the latest version "
    "of QuickTime, which you can download from the QuickTime download page. [Cancel]\n";

TEST_F(QuickTimeStart, StopsInReverseOrder) {
    EXPECT_EQ(StartUp(), 51);
    host.Send(kFM_CallShutdown);
    EXPECT_EQ(g_toolbox.calls, "layer movies -movies -layer ");
}

TEST_F(QuickTimeStart, SaysThatItIsMissing) {
    g_toolbox.layer = -2095;
    EXPECT_EQ(StartUp(), -2);
    EXPECT_EQ(alert, kNotInstalled);
    EXPECT_EQ(g_toolbox.calls, "layer ");

    g_toolbox.layer = 0;
    g_toolbox.toolbox = -1;
    EXPECT_EQ(StartUp(), -2);
    EXPECT_EQ(alert, kNotInstalled);
    EXPECT_EQ(g_toolbox.calls, "layer layer movies ");
    EXPECT_TRUE(host.registered.empty());
}

TEST_F(QuickTimeStart, SaysThatItIsTooOld) {
    g_toolbox.version = 0x06FF8000;
    EXPECT_EQ(StartUp(), -2);
    EXPECT_EQ(alert,
              "alert: QuickTime too old!: The Corvane plug-in requires QuickTime 7.0 or later. You can "
              "obtain it at the QuickTime download page. [OK]\n");
    EXPECT_NE(DrawingPort(), nullptr) << "what was started stays until shutdown";
    host.Send(kFM_CallShutdown);
    EXPECT_EQ(DrawingPort(), nullptr);
}

TEST_F(QuickTimeStart, GivesUpWithoutAVersion) {
    g_toolbox.gestalt = -5551;
    EXPECT_EQ(StartUp(), -2);
    EXPECT_EQ(alert, "");
    host.Send(kFM_CallShutdown);
}

TEST_F(QuickTimeStart, IsTornDownWhenASoundFunctionIsRefused) {
    host.refused_id = 27;
    EXPECT_EQ(StartUp(), -2);
    EXPECT_EQ(g_toolbox.calls, "layer movies -movies -layer ");
    EXPECT_EQ(host.unregistered.size(), 26U);
}

TEST_F(QuickTimeStart, TheVersionTagTakesTheFirstThreeDigits) {
    g_toolbox.version = 0x17698000;
    ASSERT_EQ(StartUp(), 51);
    EXPECT_EQ(host.CallFunction(21, {test::TextValue("quicktime")}).text, "769");
    g_toolbox.gestalt = -5551;
    const test::Outcome failed = host.CallFunction(21, {test::TextValue("quicktime")});
    EXPECT_EQ(failed.error, -5551);
    EXPECT_EQ(failed.text, "");
    host.Send(kFM_CallShutdown);
}

} // namespace
} // namespace corvane
