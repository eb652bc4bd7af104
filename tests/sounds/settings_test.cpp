#include "plugin/drawing_port.h"
#include "plugin/workarounds.h"
#include "tests/plugin/started_host.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

constexpr std::int16_t kVersion = 1;
constexpr std::int16_t kGetLastError = 13;
constexpr std::int16_t kGet = 21;
constexpr std::int16_t kSet = 23;

class Settings : public testing::Test {
protected:
    test::Outcome Get(std::string_view tag) { return host.CallFunction(kGet, {test::TextValue(tag)}); }
    test::Outcome Set(std::string_view tag, const FM_Data& value) {
        return host.CallFunction(kSet, {test::TextValue(tag), value});
    }
    test::Outcome Set(std::string_view tag) { return host.CallFunction(kSet, {test::TextValue(tag)}); }
    std::string Error() { return host.CallFunction(kGetLastError, {}).text; }

    test::StartedHost host;
};

TEST_F(Settings, VersionKnowsFourFormats) {
    const auto version = [&](std::string_view format) {
        const test::Outcome outcome = host.CallFunction(kVersion, {test::TextValue(format)});
        EXPECT_EQ(outcome.error, 0);
        return outcome.text;
    };
    Set("nonsense");
    EXPECT_EQ(version(""), "10.0.3");
    EXPECT_EQ(version("short"), "10.0.3");
    EXPECT_EQ(version("long"), "Corvane 10.0.3");
    EXPECT_EQ(version("platform"), "Windows");
    EXPECT_EQ(version("LONG"), "");
    EXPECT_EQ(host.CallFunction(kVersion, {}).text, "10.0.3");
    EXPECT_EQ(Error(), "$-50:Media_Set: Wrong parameter(s). Invalid tag.") << "the record is left alone";
}

TEST_F(Settings, StartWithTheirDefaults) {
    for (const auto& [tag, value] :
         std::initializer_list<std::pair<const char*, const char*>>{{"recording", "0"},
                                                                    {"playstatus", "0"},
                                                                    {"quicktime", "769"},
                                                                    {"QuickTime-Version", "769"},
                                                                    {"lmworkaround", "1"},
                                                                    {"EarlierQTCompatibility", "1"},
                                                                    {"RFWORKAROUND", "1"},
                                                                    {"volume", "1"},
                                                                    {"tempo", "1"},
                                                                    {"balance", "0"}}) {
        const test::Outcome outcome = Get(tag);
        EXPECT_EQ(outcome.text, value) << tag;
        EXPECT_EQ(outcome.error, 0) << tag;
        EXPECT_EQ(Error(), "$0:Media_Get: No error.") << tag;
    }
    EXPECT_EQ(Get("volume").type, kFM_TypeNumber);
    EXPECT_EQ(Get("recording").type, kFM_TypeText);
}

TEST_F(Settings, SwitchWorkaroundsOffAndOn) {
    EXPECT_EQ(Set("LMWorkaround", test::NumberValue("0")).text, "0");
    EXPECT_EQ(Get("earlierqtcompatibility").text, "0");
    EXPECT_EQ(Get("rfworkaround").text, "1");
    EXPECT_FALSE(WorkaroundWarnPending(Workaround::kLinkMedia));
    EXPECT_TRUE(WorkaroundWarnPending(Workaround::kRemoteFile));
    const test::Outcome on = Set("lmworkaround");
    EXPECT_EQ(on.text, "");
    EXPECT_EQ(on.error, 0);
    EXPECT_EQ(Get("lmworkaround").text, "1");
    EXPECT_FALSE(WorkaroundWarnPending(Workaround::kLinkMedia)) << "the warning does not come back";
    EXPECT_EQ(Set("rfworkaround", test::NumberValue("7")).text, "1");
    EXPECT_EQ(Set("rfworkaround", test::TextValue("no digits")).text, "0");
}

TEST_F(Settings, HoldPlaybackDefaults) {
    const test::Outcome set = Set("volume", test::TextValue("0.508"));
    EXPECT_EQ(set.error, 0);
    EXPECT_EQ(set.text, "");
    EXPECT_EQ(Get("volume").text, "0.5") << "rounded down to two decimals";
    Set("balance", test::NumberValue("-0.255"));
    EXPECT_EQ(Get("balance").text, "-0.26");
    Set("tempo", test::NumberValue("1" + std::string(60, '0')));
    EXPECT_EQ(Get("tempo").error, 0) << "a number too large for a float is held at its end";
    EXPECT_EQ(Set("tempo").error, -50);
    EXPECT_EQ(Error(), "$-50:Media_Set: Wrong parameter(s).");
    host.Send(kFM_CallShutdown);
    host.StartUp();
    EXPECT_EQ(Get("volume").text, "1");
}

TEST_F(Settings, RefuseWrongTagsAndCounts) {
    EXPECT_EQ(Get("volumes").error, -50);
    EXPECT_EQ(Error(), "$-50:Media_Get: Wrong parameter(s). Invalid tag.");
    EXPECT_EQ(Set("recording", test::TextValue("1")).error, -50);
    EXPECT_EQ(Error(), "$-50:Media_Set: Wrong parameter(s). Invalid tag.");
    EXPECT_EQ(host.CallFunction(kGet, {}).error, -50);
    EXPECT_EQ(Error(), "$-50:Media_Get: Wrong parameter(s). This function requires exactly 1 parameter.");
    EXPECT_EQ(host.CallFunction(kSet, {}).error, -50);
    EXPECT_EQ(Error(), "$-50:Media_Set: Wrong parameter(s). This function requires 1 or 2 parameters.");
}

TEST_F(Settings, PutThePreviousPortBack) {
    SetGWorld(nullptr);
    Get("volume");
    GWorldPtr current = DrawingPort();
    GetGWorld(&current);
    EXPECT_EQ(current, nullptr);
}

TEST(WorkaroundWords, AnyValueButZeroIsOn) {
    SetWorkaround(Workaround::kRemoteFile, 0x4000, true);
    EXPECT_TRUE(WorkaroundValue(Workaround::kRemoteFile));
    EXPECT_TRUE(WorkaroundWarnPending(Workaround::kRemoteFile));
    SetWorkaround(Workaround::kRemoteFile, 0x8000, false);
    EXPECT_FALSE(WorkaroundValue(Workaround::kRemoteFile));
    EXPECT_FALSE(WorkaroundWarnPending(Workaround::kRemoteFile));
}

} // namespace
} // namespace corvane
