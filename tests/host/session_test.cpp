#include "host/session.h"

#include "platform/fmwrapper/fault.h"
#include "platform/text/utf.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <unistd.h>

namespace host {
namespace {

SessionOptions TestOptions() {
    SessionOptions options;
    options.plugin = CORVANE_TEST_PLUGIN;
    return options;
}

std::string Text(Session& session, std::string_view calculation) {
    return utf::ToUtf8(session.Evaluate(calculation).value.AsText().units);
}

TEST(Session, RunsAPluginThroughItsLife) {
    const auto alive = fm::LiveObjects();
    {
        Session session(TestOptions());
        ASSERT_EQ(session.Start(), "");
        EXPECT_EQ(session.Plugin().Answer(), 51);
        EXPECT_EQ(session.Plugin().String(kFM_StringName), "Tést");
        EXPECT_EQ(session.GetEngine().Registrations().size(), 7U);
        EXPECT_EQ(Text(session, "test_echo(1 + 1)"), "2");
        EXPECT_EQ(session.Evaluate("Test_Echo(HostReference(\"r\"))").value.AsContainer().reference, u"r");
        EXPECT_EQ(Text(session, "Test_Evaluate(\"Get(FilePath)\")"),
                  "file:/C:" + std::filesystem::current_path().string() + "/Untitled.fp7");
        EXPECT_EQ(session.Evaluate("Test_Evaluate(\"1 +\")").error, Engine::kCalculationError);
        (void)session.Evaluate("HostPump(0.01)");
        EXPECT_GT(session.Evaluate("Test_Turns").value.AsNumber().value.ToInteger(), 0);
    }
    EXPECT_EQ(fm::LiveObjects(), alive);
    EXPECT_FALSE(fm::CurrentSession().dispatch_messages) << "the plug-in's code is gone";
}

TEST(Session, HandlersAnswerCodesAndLeaveValues) {
    Session session(TestOptions());
    ASSERT_EQ(session.Start(), "");
    Outcome outcome = session.Evaluate("Test_Answer(-50; \"left\")");
    EXPECT_EQ(outcome.error, -50);
    EXPECT_EQ(outcome.value.AsText().units, u"left");
    outcome = session.Evaluate(R"(Test_Answer(-1) & Test_Answer(-2; "b") & Test_Answer(0; "c"))");
    EXPECT_EQ(outcome.error, -1) << "the first code stands";
    EXPECT_EQ(outcome.value.AsText().units, u"bc");
    EXPECT_EQ(session.Evaluate("Test_Answer(0)").error, 0);
}

TEST(Session, LaysTheDesk) {
    SessionOptions options = TestOptions();
    options.host_version = "9.0v3";
    options.drives = {{"D:", "/data", false}, {"C:", "", false}};
    options.answers = {"ok", "file:C:\\a"};
    options.database = "/data/db/../Media.fp7";
    Session session(options);
    ASSERT_EQ(session.Start(), "");
    const fm::Session& desk = fm::CurrentSession();
    EXPECT_EQ(desk.application_version, "9.0v3");
    EXPECT_EQ(desk.application_file, std::filesystem::canonical("/proc/self/exe").string());
    EXPECT_EQ(desk.answers, (std::deque<std::string>{"ok", "file:C:\\a"}));
    EXPECT_EQ(Text(session, "Get(FilePath) & \" \" & Get(FileName)"), "file:/D:/Media.fp7 Media");
}

TEST(Session, DatabasesAreHostPathTextsOrUnixPaths) {
    const auto path = [](const std::string& database) {
        SessionOptions options = TestOptions();
        options.database = database;
        options.drives = {{"C:", "/data", false}};
        Session session(options);
        const std::string problem = session.Start();
        return problem.empty() ? Text(session, "Get(FilePath)") : problem;
    };
    EXPECT_EQ(path("fmnet:/host/Media"), "fmnet:/host/Media");
    EXPECT_EQ(path("file:/X:/a.fp7"), "file:/X:/a.fp7");
    EXPECT_EQ(path("/data/a.fp7"), "file:/C:/a.fp7");
    EXPECT_EQ(path("/etc/a.fp7"), "the database /etc/a.fp7 is outside every drive");
    EXPECT_EQ(path(""), "file:/C:/Untitled.fp7") << "results by reference work wherever the caller stands";
}

TEST(Session, SaysWhyAPluginDoesNotStart) {
    const auto problem = [](SessionOptions options) {
        Session session(std::move(options));
        return session.Start();
    };
    SessionOptions options = TestOptions();
    options.interface_version = 49;
    EXPECT_NE(problem(options).find("answer -1"), std::string::npos);
    options = TestOptions();
    options.host_version = "refused";
    EXPECT_NE(problem(options).find("answer -2"), std::string::npos);
    options.plugin = "/nowhere/plugin.so";
    EXPECT_NE(problem(options).find("cannot load the plug-in"), std::string::npos);
    options.plugin = CORVANE_FMWRAPPER;
    EXPECT_NE(problem(options).find("no entry point FMExternCallProc"), std::string::npos);
}

} // namespace
} // namespace host
