#include "host/engine/engine.h"

#include "platform/fmwrapper/session.h"
#include "platform/text/utf.h"
#include "tests/support/environment_variable.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <sys/stat.h>

namespace host {
namespace {

class HostFunctions : public testing::Test {
protected:
    HostFunctions() {
        corvane::test::WriteBytes(File("a"), std::string("\x00\x9F\xFF", 3));
        corvane::test::WriteBytes(File("empty"), "");
        fm::CurrentSession() = {};
    }
    ~HostFunctions() override { fm::CurrentSession() = {}; }
    [[nodiscard]] std::string File(const std::string& name) const { return folder_ + '/' + name; }
    std::string Text(const std::string& calculation) {
        return utf::ToUtf8(engine_.Evaluate(calculation).value.AsText().units);
    }
    FM_Error Error(const std::string& calculation) { return engine_.Evaluate(calculation).error; }

    corvane::test::ScratchFolder scratch_;
    std::string folder_ = scratch_.Path();
    Engine engine_;
};

TEST_F(HostFunctions, ContainersHoldTheBytesOfFiles) {
    const std::string container =
        R"(HostContainer("JPEG";")" + File("a") + R"(";"snd ";")" + File("empty") + "\")";
    const FM_Data value = engine_.Evaluate("Let($c = " + container + "; $c)").value;
    const auto& streams = value.AsContainer().streams;
    ASSERT_EQ(streams.size(), 2U);
    EXPECT_EQ(streams[0].type, 0x4A504547U);
    EXPECT_TRUE(streams[1].bytes->empty());
    EXPECT_EQ(Text("HostStream($c;\"JPEG\")"), "009fff");
    EXPECT_EQ(Text("HostStream($c;\"snd \") & HostStream($c;\"PICT\") & HostStream(\"text\";\"JPEG\")"), "");
    EXPECT_EQ(Text("$c = HostContainer(\"JPEG\";\"" + File("a") + "\")"), "0") << "streams are compared";
}

TEST_F(HostFunctions, UnusableFilesAndTypesAreErrors) {
    ASSERT_EQ(mkfifo(File("pipe").c_str(), 0600), 0); // it is not waited for
    for (const std::string& path : {File("none"), folder_, std::string("/dev/zero"), File("pipe")}) {
        const Outcome outcome = engine_.Evaluate(R"(HostContainer("JPEG";")" + path + "\")");
        EXPECT_EQ(outcome.error, -43) << path;
        EXPECT_NE(outcome.message.find(path), std::string::npos) << outcome.message;
    }
    EXPECT_EQ(Error("HostContainer(\"JPG\";\"" + File("a") + "\")"), -50);
    EXPECT_EQ(Error("HostStream(HostContainer;\"éé\")"), 0) << "four bytes of UTF-8";
    EXPECT_EQ(Error("HostStream(HostContainer;\"éabc\")"), -50);
}

TEST_F(HostFunctions, PumpLetsMessagesRunWithoutBusyWaiting) {
    int rounds = 0;
    int idle = 0;
    fm::CurrentSession().dispatch_messages = [&] { ++rounds; };
    engine_.on_idle = [&] { ++idle; };
    const auto begin = std::chrono::steady_clock::now();
    const std::clock_t processor = std::clock();
    EXPECT_EQ(Text("HostPump(0.2)"), "");
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(200));
    EXPECT_LT(std::clock() - processor, CLOCKS_PER_SEC / 10);
    EXPECT_GT(rounds, 10);
    EXPECT_EQ(idle, rounds);
    EXPECT_EQ(Text("HostPump(-5)"), "");
}

TEST_F(HostFunctions, InputIsQueuedInOrderOfTime) {
    (void)Text("HostKeyAfter(20; \"Escape\") & HostClickAfter(10)");
    const auto& input = fm::CurrentSession().input;
    ASSERT_EQ(input.size(), 2U);
    EXPECT_EQ(input[0].key, "");
    EXPECT_EQ(input[1].key, "escape");
    const auto delay = input[0].when - std::chrono::steady_clock::now();
    EXPECT_GT(delay, std::chrono::seconds(5));
    EXPECT_LE(delay, std::chrono::seconds(10));

    (void)Text("HostWindow(1;-2;3;4) & HostPointer(5;99999999999999)");
    EXPECT_EQ(fm::CurrentSession().document_window.top, -2);
    EXPECT_EQ(fm::CurrentSession().document_window.bottom, 4);
    EXPECT_EQ(fm::CurrentSession().pointer.x, 5);
    EXPECT_EQ(fm::CurrentSession().pointer.y, 1'000'000);
}

TEST_F(HostFunctions, RealWindowsTakeNoMadeUpInput) {
    fm::CurrentSession().windows = true;
    for (const char* calculation :
         {"HostClickAfter(1)", "HostKeyAfter(1;\"a\")", "HostPointer(1;2)", "HostWindow(1;2;3;4)"})
        EXPECT_EQ(Error(calculation), kFM_ErrorWrongParameter) << calculation;
    EXPECT_TRUE(fm::CurrentSession().input.empty());
    EXPECT_EQ(fm::CurrentSession().pointer.x, 0);
}

TEST_F(HostFunctions, TemporaryPathGoesThroughTheDrives) {
    const corvane::test::EnvironmentVariable temporary("TMPDIR", folder_ + "/");
    fm::CurrentSession().drives = {{"T:", folder_, false}};
    EXPECT_EQ(Text("Get(TemporaryPath)"), "/T:/");
    fm::CurrentSession().drives = {{"C:", "", false}, {R"(\\server\share)", folder_, true}};
    EXPECT_EQ(Text("Get(TemporaryPath)"), "//server/share/");
    fm::CurrentSession().drives = {{"X:", "/nowhere", false}};
    EXPECT_EQ(Text("Get(TemporaryPath)"), "");
}

} // namespace
} // namespace host
