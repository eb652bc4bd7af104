#include "host/engine/engine.h"

#include "platform/text/utf.h"

#include <gtest/gtest.h>

#include <ctime>
#include <utility>
#include <vector>

namespace host {
namespace {

using Case = std::pair<std::string_view, std::string_view>;

// The value as text, numbers marked with "#".
std::string Value(Engine& engine, std::string_view calculation) {
    const Outcome outcome = engine.Evaluate(calculation);
    if (outcome.parse_error)
        return "parse error " + std::to_string(outcome.parse_error->column) + ": " +
               outcome.parse_error->message;
    return (outcome.value.Type() == kFM_TypeNumber ? "#" : "") + utf::ToUtf8(outcome.value.AsText().units);
}

void Check(const std::vector<Case>& cases) {
    Engine engine;
    for (const auto& [calculation, value] : cases)
        EXPECT_EQ(Value(engine, calculation), value) << calculation;
}

TEST(Engine, OperatorsKeepTheirRanks) {
    Check({{"1 + 2 * 3", "#7"},
           {"7 - 2 - 1", "#4"},
           {"8 / 4 / 2", "#1"},
           {"-2 * -3", "#6"},
           {"2 - -1", "#3"},
           {"1 + 1 & 2 * 2", "24"},
           {"1 & 2 = 12", "#1"},
           {"1 + 1 = 2 and 3 > 2", "#1"},
           {"not 1 = 2", "#1"},
           {"not 0 and 0", "#0"},
           {"1 & not 1", "10"},
           {"1 or 0 and 0", "#1"},
           {"1 xor 1", "#0"},
           {"1 xor 0 or 0", "#1"},
           {"0.1 + 0.2 = 0.3", "#1"},
           {"12 & ¶ & \"a\"", "12\ra"}});
}

TEST(Engine, NumbersWithoutAValueAreQuestionMarks) {
    Check({{"1 / 0", "?"},
           {"1 / 0 + 1", "?"},
           {"-(1 / 0)", "?"},
           {"Abs(1/0) & Mod(5; 0) & Round(1/0; 2)", "???"},
           {"Let(a = Substitute(\"9999999999\"; \"9\"; \"9999999999\"); GetAsNumber(a) * a * a * a * a * a * "
            "a * a * a)",
            "?"},
           {"\"12 px\" * 2", "#24"},
           {"\"none\" + 1", "#1"}});
}

TEST(Engine, ComparesAsTheValuesAre) {
    Check({{R"("abc" = "ABC")", "#1"},
           {"\"É\" = \"é\"", "#1"},
           {R"("a" < "B")", "#1"},
           {R"("ab" > "a")", "#1"},
           {R"("10" < "9")", "#1"},
           {"10 < \"9\"", "#0"},
           {"\"12 px\" = 12", "#1"},
           {"\"\" = 0", "#0"},
           {"\"x\" ≠ 0", "#1"},
           {"1 ≤ 1 and 1 ≥ 1 and 1 <= 2 and 2 >= 1 and 1 <> 2", "#1"},
           {"HostContainer = HostContainer()", "#1"},
           {R"(HostReference("a") = HostReference("b"))", "#0"}});
}

TEST(Engine, LogicTakesOneBranchOnly) {
    Check({{"If(0; $a; \"no\")", "no"},
           {"If(\"\"; 1)", ""},
           {"If(HostReference(\"x\"); 1; 2) & If(HostContainer; 1; 2)", "12"},
           {R"(Case(0; "a"; 1; "b"; "c"))", "b"},
           {R"(Case(0; "a"; "c"))", "c"},
           {"Case(0; \"a\")", ""},
           {R"(Choose(1; "a"; "b"))", "b"},
           {R"(Choose(2; "a"; "b") & Choose(-1; "a"))", ""},
           {"Let([$n = 0; x = If(1; 1; Let($n = 5; 1)); y = 1 or Let($n = 6; 1); z = 0 and Let($n = 7; 1)]; "
            "$n)",
            "#0"},
           {R"(GetAsBoolean("0 1") & GetAsBoolean("none") & GetAsBoolean(-0.5))", "101"},
           {R"(IsEmpty("") & IsEmpty(0) & IsEmpty(HostContainer) & IsEmpty(HostReference("a")))", "1010"}});
}

TEST(Engine, LetNamesAreLocalAndNested) {
    Check({{"Let([a = 1; b = a + 1; a = b * 10]; a & b)", "202"},
           {"Let(a = 1; Let(a = a + 1; a) & a)", "21"},
           {R"(Let(A = "x"; a & Let([b = "y"; c = Let(d = b; d & a)]; c)))", "xyx"},
           {"Let(length = 3; length & Length(\"ab\"))", "32"},
           {"Let(ö = 2; Ö * ö)", "#4"}});
}

TEST(Engine, SessionVariablesLiveOn) {
    Engine engine;
    EXPECT_EQ(Value(engine, "$a & $$b"), "");
    EXPECT_EQ(Value(engine, "Let([$a = 1; $$B = HostReference(\"r\"); c = 3]; $A + c)"), "#4");
    EXPECT_EQ(Value(engine, "$a & \"-\" & $$b"), "1-r");
    EXPECT_EQ(engine.Evaluate("$$b").value.Type(), kFM_TypeContainer);
    EXPECT_EQ(Value(engine, "Let($a = $a & $a; $a)"), "11");
}

TEST(Engine, TextFunctionsCountCharacters) {
    Check(
        {{"Length(\"a😀é\")", "#3"},
         {"Left(\"😀ab\"; 2) & Left(\"ab\"; -1) & Left(\"ab\"; 9)", "😀aab"},
         {"Right(\"ab😀\"; 1) & Right(\"ab\"; 0) & Right(\"ab\"; 5)", "😀ab"},
         {"Middle(\"a😀bc\"; 2; 2) & Middle(\"abc\"; 0; 1) & Middle(\"abc\"; 9; 1)", "😀ba"},
         {"Position(\"x😀aBab\"; \"AB\"; 1; 1) & Position(\"x😀aBab\"; \"AB\"; 1; 2)", "35"},
         {R"(Position("abab"; "ab"; 2; 1) & Position("abab"; "ab"; 4; -1) & Position("abab"; "ab"; 4; -2))",
          "331"},
         {R"(Position("abab"; "ab"; 4; -3) & Position("ab"; ""; 1; 1) & Position("ab"; "a"; 1; 0))", "000"},
         {R"(PatternCount("aAaa"; "aa") & PatternCount("abc"; ""))", "20"},
         {R"(Substitute("aAa"; "a"; "bb"))", "bbAbb"},
         {R"(Substitute("abc"; ["a"; "b"]; ["b"; "x"]))", "xxc"},
         {R"(Substitute("abc"; ""; "x"))", "abc"},
         {"Upper(\"aßé\") & Lower(\"AÉ\")", "AßÉaé"},
         {R"("[" & Trim("  a b ") & Trim("   ") & "]")", "[a b]"},
         {"GetValue(\"a¶b¶\"; 2) & GetValue(\"a¶b\"; 3) & GetValue(\"a\"; 0) & GetValue(\"a\"; 1)", "ba"},
         {"ValueCount(\"\") & ValueCount(\"a\") & ValueCount(\"a¶b\") & ValueCount(\"a¶b¶\") & ValueCount(¶)",
          "01221"},
         {"Char(128512) & Char(0) & Char(55296) & Char(99999999) & Code(\"😀x\") & Code(\"\")", "😀128512"},
         {"GetAsText(1.50)", "1.5"}});
}

TEST(Engine, NumberFunctions) {
    Check({{"Int(-1.5) & Floor(-1.5) & Abs(-1.5)", "-1-21.5"},
           {"Round(2.345; 2) & \" \" & Round(-2.5; 0) & \" \" & Round(1234; -2) & \" \" & Round(1; "
            "-99999999999)",
            "2.35 -3 1200 0"},
           {R"(Mod(7; 3) & " " & Mod(-7; 3) & " " & Mod(7; -3) & " " & Mod(5.5; 2))", "1 2 -2 1.5"},
           {"Mod(2999999999999999999999999999999999999999; 3)", "#2"},
           {"Mod(2.99999999999999999999; 3)", "#2.99999999999999999999"},
           {"Mod(-2.99999999999999999999; -3)", "#-2.99999999999999999999"},
           {R"(Min(3; "2"; 10) & Max(3; "2"; 10))", "210"},
           {"GetAsNumber(\"a-1.5b2\")", "#-1.52"},
           {"GetAsNumber(\"none\")", ""}});
}

TEST(Engine, GetTellsAboutTheHost) {
    Engine engine;
    engine.database = "file:/C:/My Db/Media.old.fp7";
    EXPECT_EQ(Value(engine, "get ( filename )"), "Media.old");
    EXPECT_EQ(Value(engine, "Get(SystemPlatform)"), "#-2");
    engine.database = "fmnet:/server/Media";
    EXPECT_EQ(Value(engine, "Get(FileName)"), "Media");

    std::tm read = {};
    const std::string stamp = Value(engine, "Get(CurrentTimestamp)");
    ASSERT_NE(strptime(stamp.c_str(), "%Y-%m-%d %H:%M:%S", &read), nullptr) << stamp;
    read.tm_isdst = -1;
    EXPECT_NEAR(static_cast<double>(mktime(&read)), static_cast<double>(std::time(nullptr)), 5);
}

TEST(Engine, TextHasBounds) {
    Engine engine;
    engine.text_allowance = 1'000'000;
    const auto doubled = [](std::string_view step, int times) {
        std::string text = "Let([a=\"0123456789\"";
        for (int i = 0; i < times; ++i) text += step;
        return text + "]; Length(a))";
    };
    EXPECT_EQ(Value(engine, doubled(";a=a&a", 10)), "#10240");
    const std::string digits = "\"0123456789012345678901234567890123456789\"";
    for (const std::string& step : {std::string(";a=a&a"), ";a=Substitute(a;\"0\";" + digits + ")"}) {
        const Outcome outcome = engine.Evaluate(doubled(step, 60));
        EXPECT_EQ(outcome.error, kFM_ErrorOutOfMemory) << step;
        EXPECT_EQ(outcome.message, "the calculation makes too much text");
    }
    EXPECT_EQ(engine.Evaluate("1").error, 0) << "the allowance is each calculation's own";
}

TEST(Engine, BrokenUtf8BecomesReplacementCharacters) {
    Engine engine;
    EXPECT_EQ(Value(engine, "\"a\xFF\" & \"\xC3\""), "a\uFFFD\uFFFD");
    EXPECT_TRUE(engine.Evaluate("\xFF\xFE").parse_error.has_value());
}

FM_Error One(std::int16_t, const FM_ExprEnv&, const FM_DataVect&, FM_Data& result) {
    result.SetText(u"one");
    return 0;
}

FM_Error Two(std::int16_t, const FM_ExprEnv&, const FM_DataVect&, FM_Data& result) {
    result.SetText(u"two");
    return 7;
}

TEST(Engine, FirstRegistrationOfANameWins) {
    Engine engine;
    EXPECT_EQ(engine.Register({1, 1, u"Name", u"", 0, 0, 0, One}), 0);
    EXPECT_EQ(engine.Register({1, 1, u"Other", u"", 0, 0, 0, One}), kFM_ErrorWrongParameter);
    EXPECT_EQ(engine.Register({1, 2, u"NAME", u"", 0, 0, 0, Two}), 0);
    EXPECT_EQ(Value(engine, "nAmE"), "one");
    EXPECT_EQ(engine.Unregister(1, 1), 0);
    EXPECT_EQ(engine.Unregister(1, 1), kFM_ErrorWrongParameter);
    EXPECT_EQ(Value(engine, "name"), "two");
    EXPECT_EQ(engine.Evaluate("name & \"!\"").error, 7);
    EXPECT_EQ(Value(engine, "name & \"!\""), "two!");
}

} // namespace
} // namespace host
