#include "host/engine/engine.h"

#include "platform/fmwrapper/session.h"
#include "platform/text/utf.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace host {
namespace {

class HostFunctions : public testing::Test {
protected:
    void SetUp() override {
        std::string folder = testing::TempDir() + "corvane-host-XXXXXX";
        ASSERT_NE(mkdtemp(folder.data()), nullptr);
        folder_ = folder;
        std::ofstream(File("a"), std::ios::binary) << std::string("\x00\x9F\xFF", 3);
        const std::ofstream empty(File("empty"));
        fm::CurrentSession() = {};
    }
    void TearDown() override {
        std::filesystem::remove_all(folder_);
        fm::CurrentSession() = {};
    }
    [[nodiscard]] std::string File(const std::string& name) const { return folder_ + '/' + name; }
    std::string Text(const std::string& calculation) {
        return utf::ToUtf8(engine_.Evaluate(calculation).value.AsText().units);
    }
    FM_Error Error(const std::string& calculation) { return engine_.Evaluate(calculation).error; }

    std::string folder_;
    Engine engine_;
};

TEST_F(HostFunctions, ContainersHoldTheBytesOfFiles) {
    const Outcome outcome = engine_.Evaluate(R"(Let($c = HostContainer("JPEG";")" + File("a") +
                                             R"(";"snd ";")" + File("empty") + "\"); $c)");
    ASSERT_EQ(outcome.error, 0) << outcome.message;
    const auto& streams = outcome.value.AsContainer().streams;
    ASSERT_EQ(streams.size(), 2U);
    EXPECT_EQ(streams[0].type, 0x4A504547U);
    EXPECT_EQ(*streams[0].bytes, (fm::Bytes{0x00, 0x9F, 0xFF}));
    EXPECT_TRUE(streams[1].bytes->empty());
    EXPECT_EQ(Text("HostStream($c;\"JPEG\")"), "009fff");
    EXPECT_EQ(Text("HostStream($c;\"snd \") & HostStream($c;\"PICT\") & HostStream(\"text\";\"JPEG\")"), "");
    EXPECT_EQ(Text("$c = HostContainer(\"JPEG\";\"" + File("a") + "\")"), "0") << "streams are compared";
}

TEST_F(HostFunctions, UnusableFilesAndTypesAreErrors) {
    EXPECT_EQ(Error("HostContainer(\"JPEG\";\"" + File("none") + "\")"), -43);
    EXPECT_EQ(Error("HostContainer(\"JPEG\";\"" + folder_ + "\")"), -43);
    EXPECT_EQ(Error("HostContainer(\"JPEG\";\"/dev/zero\")"), -43);
    ASSERT_EQ(mkfifo(File("pipe").c_str(), 0600), 0);
    EXPECT_EQ(Error("HostContainer(\"JPEG\";\"" + File("pipe") + "\")"), -43) << "a pipe is not waited for";
    EXPECT_EQ(Error("HostContainer(\"JPG\";\"" + File("a") + "\")"), -50);
    EXPECT_EQ(Error("HostStream(HostContainer;\"éé\")"), 0) << "four bytes of UTF-8";
    EXPECT_EQ(Error("HostStream(HostContainer;\"éabc\")"), -50);
    EXPECT_NE(engine_.Evaluate("HostContainer(\"JPEG\";\"" + File("none") + "\")").message.find(File("none")),
              std::string::npos);
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
    const char* saved = std::getenv("TMPDIR");
    const std::string before = saved != nullptr ? saved : "";
    setenv("TMPDIR", (folder_ + "/").c_str(), 1);
    fm::CurrentSession().drives = {{"T:", folder_, false}};
    EXPECT_EQ(Text("Get(TemporaryPath)"), "/T:/");
    fm::CurrentSession().drives = {{"C:", "", false}, {R"(\\server\share)", folder_, true}};
    EXPECT_EQ(Text("Get(TemporaryPath)"), "//server/share/");
    fm::CurrentSession().drives = {{"X:", "/nowhere", false}};
    EXPECT_EQ(Text("Get(TemporaryPath)"), "");
    if (saved != nullptr) {
        setenv("TMPDIR", before.c_str(), 1);
    } else {
        unsetenv("TMPDIR");
    }
}

} // namespace
} // namespace host
