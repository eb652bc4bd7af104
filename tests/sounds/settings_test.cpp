#include "plugin/drawing_port.h"
#include "plugin/workarounds.h"
#include "tests/sounds/sound_session.h"

namespace corvane {
namespace {

constexpr std::int16_t kVersion = 1;
constexpr std::int16_t kGet = 21;
constexpr std::int16_t kSet = 23;

using Settings = SoundSession;

TEST_F(Settings, AreNumbersOrTexts) {
    EXPECT_EQ(host.CallFunction(kGet, {Text("volume")}).type, kFM_TypeNumber);
    EXPECT_EQ(host.CallFunction(kGet, {Text("recording")}).type, kFM_TypeText);
    EXPECT_EQ(Get("QuickTime"), "769");
}

TEST_F(Settings, OfWorkaroundsEndTheirWarnings) {
    Set("LMWorkaround", "0");
    EXPECT_FALSE(WorkaroundWarnPending(Workaround::kLinkMedia));
    EXPECT_TRUE(WorkaroundWarnPending(Workaround::kRemoteFile));
    EXPECT_EQ(Run(kSet, {Text("lmworkaround")}), "");
    EXPECT_EQ(Get("lmworkaround"), "1");
    EXPECT_FALSE(WorkaroundWarnPending(Workaround::kLinkMedia)) << "the warning does not come back";
}

TEST_F(Settings, HoldPlaybackDefaultsUntilTheHostEnds) {
    Set("volume", "0.508");
    EXPECT_EQ(Get("volume"), "0.5") << "rounded down to two decimals";
    Set("tempo", "1" + std::string(60, '0'));
    EXPECT_GT(Get("tempo").size(), 30U) << "a number too large for a float is held at its end";
    host.Send(kFM_CallShutdown);
    host.StartUp();
    EXPECT_EQ(Get("volume"), "1");
}

TEST_F(Settings, RefuseWrongTagsAndCounts) {
    EXPECT_EQ(host.CallFunction(kGet, {Text("volumes")}).error, -50);
    EXPECT_EQ(LastError(), "$-50:Media_Get: Wrong parameter(s). Invalid tag.");
    EXPECT_EQ(host.CallFunction(kSet, {Text("recording"), Text("1")}).error, -50);
    EXPECT_EQ(host.CallFunction(kGet, {}).error, -50);
    EXPECT_EQ(LastError(), "$-50:Media_Get: Wrong parameter(s). This function requires exactly 1 parameter.");
    EXPECT_EQ(host.CallFunction(kSet, {}).error, -50);
    EXPECT_EQ(LastError(), "$-50:Media_Set: Wrong parameter(s). This function requires 1 or 2 parameters.");
    EXPECT_EQ(Run(kVersion, {}), "10.0.3");
}

TEST_F(Settings, PutThePreviousPortBack) {
    SetGWorld(nullptr);
    Get("volume");
    GWorldPtr current = DrawingPort();
    GetGWorld(&current);
    EXPECT_EQ(current, nullptr);
}

} // namespace
} // namespace corvane
