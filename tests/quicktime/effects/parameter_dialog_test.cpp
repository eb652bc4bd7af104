#include "platform/quicktime/effects/parameter_dialog.h"

#include "platform/quicktime/effects/effect_preview.h"
#include "platform/quicktime/movies/atoms.h"
#include "tests/quicktime/components.h"
#include "tests/quicktime/effects/effect_test.h"

namespace {

using namespace effect_test;

qt::MemoryHandle List(std::int32_t minimum, std::int32_t maximum, OSType only = 0) {
    QTAtomContainer list = nullptr;
    EXPECT_EQ(QTGetEffectsListExtended(
                  &list, minimum, maximum,
                  [only](const QTEffectProperties& effect) { return only == 0 || effect.subtype == only; }),
              noErr);
    return qt::MemoryHandle(list);
}

TEST(EffectList, HasWhatIsAskedFor) {
    const auto count = [](const qt::MemoryHandle& list) {
        return QTCountChildrenOfType(list.get(), kParentAtomIsContainer, kEffectTypeAtom);
    };
    const std::int32_t one = count(List(1, 1));
    const std::int32_t two = count(List(2, 2));
    EXPECT_EQ(one + two, static_cast<std::int32_t>(qt::Effects().size()));
    EXPECT_EQ(count(List(1, 2)), one + two);
    EXPECT_EQ(count(List(3, 9)), 0);
    const qt::MemoryHandle list = List(1, 2, qt::Code("ckey"));
    ASSERT_EQ(count(list), 1);
    const auto data = [&](OSType type) {
        return QTGetAtomData(list.get(),
                             QTFindChildByIndex(list.get(), kParentAtomIsContainer, type, 1, nullptr));
    };
    EXPECT_EQ(qt::BigEndian32(data(kEffectTypeAtom), 0), qt::Code("ckey"));
    EXPECT_TRUE(std::ranges::equal(data(kEffectNameAtom), std::as_bytes(std::span("Chroma Key", 10))));
}

TEST(EffectDialog, RefusesAnEmptyListAndOtherActions) {
    const qt::MemoryHandle set = corvane::test::NewContainer();
    QTParameterDialog dialog = nullptr;
    EXPECT_EQ(QTCreateStandardParameterDialog(List(3, 3).get(), set.get(), &dialog), paramErr);
    EXPECT_EQ(dialog, nullptr);
    ASSERT_EQ(QTCreateStandardParameterDialog(List(1, 2).get(), set.get(), &dialog), noErr);
    const qt::OwnedParameterDialog owner(dialog);
    QuickDrawPicture picture;
    EXPECT_EQ(picture.pixels.Allocate(2, 2), noErr);
    using Preview = QTParamPreviewRecord;
    const auto act = [&](auto action, const auto& record) {
        return QTStandardParameterDialogDoAction(dialog, action, record);
    };
    EXPECT_EQ(act(99, Preview{1, &picture}), paramErr);
    EXPECT_EQ(act(pdActionSetPreviewPicture, Preview{3, &picture}), paramErr);
    EXPECT_EQ(act(pdActionSetPreviewPicture, Preview{1, nullptr}), paramErr);
    EXPECT_EQ(act(pdActionSetPreviewPicture, Preview{1, &picture}), noErr);
    const qt::MemoryHandle xml(NewHandle(0));
    EXPECT_EQ(act(pdActionConvertSettingsToXMLWithComments, QTParamXMLRecord{set.get(), xml.get()}), paramErr)
        << "nothing has been chosen";
}

TEST(EffectPreview, ShowsTheEffectAtTheScaleOfTheFirstPicture) {
    qt::EffectPreview preview;
    EXPECT_FALSE(preview.IsShown());
    // 1280 pixels become 320; so do the tiles of 40 pixels, 10.
    ASSERT_EQ(preview.SetSource(1, MakeNoise(1280, 40, false)), noErr);
    ASSERT_EQ(preview.SetSource(2, MakeImage(640, 40, 0xFF00'00FF)), noErr);
    ASSERT_TRUE(preview.IsShown());
    const win32::SettingsPreview tiles = preview.Draw(Settings("mosa", {{"size", "40"}}));
    ASSERT_EQ(tiles.width, 320);
    ASSERT_EQ(tiles.height, 10);
    ASSERT_EQ(tiles.rgb.size(), 320U * 10 * 3);
    const auto red = [](const win32::SettingsPreview& drawn, std::size_t x, std::size_t y) {
        return drawn.rgb.at((y * 320 + x) * 3);
    };
    for (std::size_t x = 0; x < 320; ++x) {
        EXPECT_EQ(red(tiles, x, 9), red(tiles, x / 10 * 10, 0)) << x;
        EXPECT_NEAR(red(tiles, x, 0), 128, 20) << "the mean of 1600 random values";
    }
    // The second picture, at the same scale, covers half; beyond it is nothing, on white.
    const win32::SettingsPreview faded = preview.Draw(Settings("dslv", {{"percent", "100"}}));
    EXPECT_EQ(red(faded, 159, 5), 0);
    EXPECT_EQ(red(faded, 160, 5), 255);
}

} // namespace
