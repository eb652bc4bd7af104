#include "host/commands/results.h"

#include <gtest/gtest.h>

#include <vector>

namespace host {
namespace {

Outcome TextOutcome(std::u16string text) {
    Outcome outcome;
    outcome.value.SetText(std::move(text));
    return outcome;
}

TEST(Results, ErrorTextsAreFailures) {
    struct Case {
        std::u16string text;
        bool failure;
    };
    const std::vector<Case> cases = {{u"$-43:File was not found.", true},
                                     {u"$20100:", true},
                                     {u"$0:Cancel", false},
                                     {u"$-0:x", false},
                                     {u"$:x", false},
                                     {u"$12", false},
                                     {u"$12x:", false},
                                     {u"$--1:", false},
                                     {u"43:x", false},
                                     {u"$", false},
                                     {u"", false},
                                     {u"$99999999999999999999:x", true}};
    for (const Case& c : cases) EXPECT_EQ(IsFailure(TextOutcome(c.text)), c.failure);
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
