#include "host/commands/results.h"

#include <gtest/gtest.h>

namespace host {
namespace {

Outcome TextOutcome(std::u16string text) {
    Outcome outcome;
    outcome.value.SetText(std::move(text));
    return outcome;
}

TEST(Results, ErrorTextsAreFailures) {
    for (const auto* text : {u"$-43:File was not found.", u"$20100:", u"$99999999999999999999:x"})
        EXPECT_TRUE(IsFailure(TextOutcome(text))) << testing::PrintToString(text);
    for (const auto* text : {u"$0:Cancel", u"$-0:x", u"$:x", u"$12", u"$12x:", u"$--1:", u"43:x", u"$", u""})
        EXPECT_FALSE(IsFailure(TextOutcome(text))) << testing::PrintToString(text);
    Outcome outcome;
    outcome.error = -1;
    EXPECT_TRUE(IsFailure(outcome));
}

TEST(Results, ParseErrorsShowThePlace) {
    EXPECT_EQ(ParseErrorReport("a ≠ )", {1, 5, "expected a value"}, 7),
              "corvane: 7:5: expected a value\na ≠ )\n    ^\n");
    EXPECT_EQ(ParseErrorReport("1 +\r\n\t+ x\r3", {2, 4, "m"}, 1), "corvane: 2:4: m\n\t+ x\n\t  ^\n");
    EXPECT_EQ(ParseErrorReport("1 +\n", {2, 1, "m"}, 1), "corvane: 2:1: m\n\n^\n");
    EXPECT_EQ(ParseErrorReport("", {1, 1, "m"}, 1), "corvane: 1:1: m\n\n^\n");
}

} // namespace
} // namespace host
