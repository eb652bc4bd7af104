#include "plugin/errors.h"
#include "sounds/functions.h"
#include "tests/support/calls.h"
#include "tests/support/fake_host.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

// "code result", where the call fails "code message".
std::string Extracted(std::initializer_list<FM_Data> values) {
    const test::Outcome outcome = test::Call(ExtractInfo, values);
    const std::string code = std::to_string(outcome.error) + " ";
    if (outcome.error == 0) return code + outcome.text;
    EXPECT_EQ(outcome.text, "");
    return code + LastError().GetMessage();
}

TEST(ExtractInfo, TakesWhatHasNoOtherCharactersForANumber) {
    const test::FakeHost host;
    const std::pair<const char*, const char*> cases[] = {
        {"", "0 4"},
        {"000", "0 4"},
        {" \t ", "0 4"},
        {"\t 3 ", "0   Media"}, // a line without a colon is given whole
        {"4", "-1 Media_ExtractInfo: Unknown error. Could not copy indexed line."},
        {"2147483647", "-1 Media_ExtractInfo: Unknown error. Could not copy indexed line."},
        {"2147483648", "-50 Media_ExtractInfo: Wrong parameter(s)."},
        {"12a", "0 x"}};
    const FM_Data list = test::TextValue("Format: WAVE\r12a: x\r  Media\r");
    for (const auto& [key, value] : cases) EXPECT_EQ(Extracted({list, test::TextValue(key)}), value) << key;
    EXPECT_EQ(Extracted({list, test::NumberValue("1")}), "0 WAVE");
    EXPECT_EQ(Extracted({test::TextValue(""), test::TextValue("1")}),
              "-1 Media_ExtractInfo: Unknown error. Could not copy indexed line.");
    const std::string count =
        "-50 Media_ExtractInfo: Wrong parameter(s). This function requires 1 or 2 arguments.";
    EXPECT_EQ(Extracted({}), count);
    EXPECT_EQ(Extracted({list, list, list}), count);
}

} // namespace
} // namespace corvane
