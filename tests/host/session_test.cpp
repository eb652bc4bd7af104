#include "host/session.h"

#include "platform/fmwrapper/fault.h"
#include "platform/text/utf.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace host {
namespace {

std::string Text(Session& session, std::string_view calculation) {
    return utf::ToUtf8(session.Evaluate(calculation).value.AsText().units);
}

TEST(Session, RunsAPluginThroughItsLife) {
    const auto alive = fm::LiveObjects();
    {
        SessionOptions options;
        options.plugin = CORVANE_TEST_PLUGIN;
        Session session(options);
        ASSERT_EQ(session.Start(), "");
        EXPECT_EQ(session.Plugin().Answer(), 51);
        EXPECT_EQ(session.Plugin().String(kFM_StringName), "Tést");
        EXPECT_EQ(session.GetEngine().Registrations().size(), 7U);
        EXPECT_EQ(Text(session, "test_echo(1 + 1)"), "2");
        EXPECT_EQ(session.Evaluate("Test_Echo(HostReference(\"r\"))").value.AsContainer().reference, u"r");
        EXPECT_EQ(Text(session, "Test_Evaluate(\"Get(FilePath)\")"),
                  "file:/C:" + std::filesystem::current_path().string() + "/Untitled.fp7");
        EXPECT_EQ(session.Evaluate("Test_Evaluate(\"1 +\")").error, Engine::kCalculationError);
        const Outcome failed = session.Evaluate(R"x(Test_Evaluate("Test_Answer(-7; \"left\")"))x");
        EXPECT_EQ(failed.error, -7);
        EXPECT_TRUE(failed.value.IsEmpty());
        (void)session.Evaluate("HostPump(0.01)");
        EXPECT_GT(session.Evaluate("Test_Turns").error, 0);
    }
    EXPECT_EQ(fm::LiveObjects(), alive);
    EXPECT_FALSE(fm::CurrentSession().dispatch_messages) << "the plug-in's code is gone";
}

} // namespace
} // namespace host
