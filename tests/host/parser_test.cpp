#include "host/engine/engine.h"

#include <gtest/gtest.h>

#include <utility>

namespace host {
namespace {

FM_Error Nothing(std::int16_t, const FM_ExprEnv&, const FM_DataVect&, FM_Data&) {
    return 0;
}

std::string Complaint(Engine& engine, std::string_view calculation) {
    const auto error = engine.Evaluate(calculation).parse_error;
    if (!error) return "parses";
    return std::to_string(error->line) + ':' + std::to_string(error->column) + ": " + error->message;
}

TEST(Parser, SaysWhatIsWrongAndWhere) {
    Engine engine;
    ASSERT_EQ(engine.Register({0, 1, u"Media_One", u"", 1, 1, 0, Nothing}), 0);
    ASSERT_EQ(engine.Register({0, 2, u"Media_Many", u"", 2, -1, 0, Nothing}), 0);
    ASSERT_EQ(engine.Register({0, 3, u"Media_None", u"", 0, 0, 0, Nothing}), 0);
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"", "1:1: expected a value"},
        {"(1 + 2", "1:7: expected \")\""},
        {"1 +", "1:4: expected a value"},
        {"1 2", "1:3: expected an operator"},
        {"1)", "1:2: expected an operator"},
        {"and", "1:1: expected a value"},
        {"1 + or", "1:5: expected a value"},
        {"Media_One(1", "1:12: expected \")\" or \";\""},
        {"Media_One(\"é\" 2)", "1:15: expected \")\" or \";\""},
        {"1 +\n  nothing", "2:3: unknown name \"nothing\""},
        {"1 +\r\n1 +\r1 +\n nothing", "4:2: unknown name \"nothing\""},
        {"\"\xFF\xFF\" x", "1:6: expected an operator"},
        {"1 & \"open", "1:5: this text has no closing quote"},
        {"Media_Many(1)", "1:1: Media_Many takes at least 2 parameters, not 1"},
        {"If(1)", "1:1: If takes 2 to 3 parameters, not 1"},
        {"HostContainer(\"JPEG\")", "1:1: HostContainer takes an even number of parameters, not 1"},
        {"Substitute(1;2;3;4)", "1:1: Substitute takes an odd number of parameters, at least 3, not 4"},
        {"Get(Nothing)", "1:5: unknown value \"Nothing\" of Get"},
        {"Get(FilePath;1)", "1:13: expected \")\""},
        {"Get(\"FilePath\")", "1:5: expected the name of a value of Get"},
        {"Let(a = 1)", "1:10: expected \";\""},
        {"Let([a = 1; b]; a)", "1:14: expected \"=\""},
        {"Let([a = 1; b = 2; a)", "1:21: expected \"=\""},
        {"Let(not = 1; 2)", "1:5: expected a name"},
        {"Let(a = 1; a) & a", "1:17: unknown name \"a\""},
        {"Length([1])", "1:8: expected a value"},
        {"Media_None", "parses"},
        {"Media_None()", "parses"},
        {"Media_Many(1;2;3;4)", "parses"},
    };
    for (const auto& [calculation, complaint] : cases)
        EXPECT_EQ(Complaint(engine, calculation), complaint) << calculation;
}

TEST(Parser, BoundsTheDepthOfEveryKindOfNesting) {
    Engine engine;
    const auto nested = [](std::string_view open, std::string_view core, std::string_view close, int depth) {
        std::string text;
        for (int i = 0; i < depth; ++i) text += open;
        text += core;
        for (int i = 0; i < depth; ++i) text += close;
        return text;
    };
    const std::pair<std::string_view, std::string_view> brackets[] = {
        {"(", ")"}, {"Length(", ")"}, {"Let(a=", ";1)"}, {"Let(a=1;", ")"},
        {"-", ""},  {"not ", ""},     {"If(1;", ")"}};
    for (const auto& [open, close] : brackets) {
        EXPECT_EQ(Complaint(engine, nested(open, "1", close, 90)), "parses") << open;
        EXPECT_NE(Complaint(engine, nested(open, "1", close, 300'000)).find("nested too deeply"),
                  std::string::npos)
            << open;
    }
    // Runs of operators are no nesting.
    EXPECT_EQ(Complaint(engine, nested("1+", "1", "", 300'000)), "parses");
    EXPECT_EQ(Complaint(engine, nested("1 & not ", "1", "", 300'000)), "parses");
}

} // namespace
} // namespace host
