#include "plugin/errors.h"
#include "sounds/functions.h"
#include "tests/support/calls.h"
#include "tests/support/fake_host.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

constexpr const char* kWave = "Format: WAVE\r"
                              "Track 1\r"
                              "  Volume: 256\r"
                              "  Duration (s): 000:00:01.500\r"
                              "  Media\r"
                              "    Media Language: 0\r"
                              "    Sample Description 1\r"
                              "      Sample Rate (Hz): 44100\r";

class ExtractInfoTest : public testing::Test {
protected:
    static std::string Value(std::string_view list, std::string_view key) {
        const test::Outcome outcome = test::Call(ExtractInfo, {test::TextValue(list), test::TextValue(key)});
        EXPECT_EQ(outcome.error, 0) << key << " " << LastError().GetMessage();
        return outcome.text;
    }
    static std::string Failure(std::string_view list, std::string_view key) {
        const test::Outcome outcome = test::Call(ExtractInfo, {test::TextValue(list), test::TextValue(key)});
        EXPECT_EQ(outcome.text, "") << key;
        EXPECT_EQ(outcome.error, LastError().HostCode());
        return std::to_string(outcome.error) + " " + LastError().GetMessage();
    }

    test::FakeHost host;
};

TEST_F(ExtractInfoTest, CountsLines) {
    EXPECT_EQ(test::Call(ExtractInfo, {test::TextValue(kWave)}).text, "9");
    EXPECT_EQ(LastError().GetMessage(), "Media_ExtractInfo: No error.");
    for (const char* key : {"", "0", " \t ", "000"}) EXPECT_EQ(Value(kWave, key), "9") << key;
    EXPECT_EQ(Value("", "0"), "1");
    EXPECT_EQ(Value("a: 1\nb: 2", "0"), "1") << "line feeds don't count";
    EXPECT_EQ(test::Call(ExtractInfo, {test::TextValue(kWave), test::NumberValue("1")}).text, "WAVE");
}

TEST_F(ExtractInfoTest, GivesLinesByNumber) {
    EXPECT_EQ(Value(kWave, "1"), "WAVE");
    EXPECT_EQ(Value(kWave, "\t 3 "), "256");
    EXPECT_EQ(Value(kWave, "5"), "  Media") << "a line without a colon is given whole";
    EXPECT_EQ(Value("a: 1\nb: 2", "2"), "2");
    EXPECT_EQ(Failure(kWave, "9"), "-1 Media_ExtractInfo: Unknown error. Could not copy indexed line.");
    EXPECT_EQ(Failure("", "1"), "-1 Media_ExtractInfo: Unknown error. Could not copy indexed line.");
    EXPECT_EQ(Failure(kWave, "2147483647"),
              "-1 Media_ExtractInfo: Unknown error. Could not copy indexed line.");
    EXPECT_EQ(Failure(kWave, "2147483648"), "-50 Media_ExtractInfo: Wrong parameter(s).");
}

TEST_F(ExtractInfoTest, GivesValuesByKey) {
    EXPECT_EQ(Value(kWave, "Track 1/Media/Sample Description 1/Sample Rate"), "44100");
    EXPECT_EQ(Value(kWave, "Track 1/Duration (s)"), "000:00:01.500");
    EXPECT_EQ(Value(kWave, "Track 1/Duration"), "000:00:01.500");
    EXPECT_EQ(Value("12a: x", "12a"), "x") << "digits with a letter behind them are a key";
}

TEST_F(ExtractInfoTest, SaysWhatIsWrongWithAKey) {
    EXPECT_EQ(Failure(kWave, "Track 9/Volume"), "-43 Media_ExtractInfo: Requested key was not found.");
    EXPECT_EQ(Failure(kWave, "Track 1/"), "-43 Media_ExtractInfo: Requested key was not found.");
    EXPECT_EQ(Failure(kWave, "/"), "-1 Media_ExtractInfo: Wrong line or key.");
    EXPECT_EQ(Failure(kWave, "(s)"), "-2 Media_ExtractInfo: Wrong key.");
}

TEST_F(ExtractInfoTest, ChecksTheCount) {
    const FM_Data text = test::TextValue("x");
    EXPECT_EQ(test::Call(ExtractInfo, {}).error, -50);
    EXPECT_EQ(test::Call(ExtractInfo, {text, text, text}).error, -50);
    EXPECT_EQ(LastError().GetMessage(),
              "Media_ExtractInfo: Wrong parameter(s). This function requires 1 or 2 arguments.");
}

} // namespace
} // namespace corvane
