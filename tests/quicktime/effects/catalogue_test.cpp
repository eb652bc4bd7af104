// What holds for every effect of the table.
#include "tests/quicktime/effects/effect_test.h"

#include "platform/quicktime/effects/settings_xml.h"
#include "tests/quicktime/components.h"

#include <algorithm>

namespace {

using namespace effect_test;

qt::EffectSettings RandomSettings(const qt::Effect& effect, std::mt19937& random) {
    qt::EffectSettings settings = {&effect, qt::EffectValues(effect.parameters)};
    for (std::size_t i = 0; i < effect.parameters.size(); ++i) {
        const qt::EffectParameter& parameter = effect.parameters[i];
        settings.values.Set(i, std::uniform_real_distribution(parameter.minimum, parameter.maximum)(random));
    }
    return settings;
}

TEST(EffectTable, SettingsSurviveTheirTextAndTheirAtoms) {
    std::mt19937 random(4);
    for (const qt::Effect* effect : qt::Effects()) {
        ASSERT_LE(effect->parameters.size(), qt::kMostParameters) << effect->name;
        for (const qt::EffectParameter& parameter : effect->parameters)
            EXPECT_EQ(std::clamp(parameter.standard, parameter.minimum, parameter.maximum),
                      parameter.standard);
        for (int round = 0; round < 20; ++round) {
            const qt::EffectSettings settings = RandomSettings(*effect, random);
            const auto read = qt::EffectSettingsFromXml(qt::EffectSettingsToXml(settings));
            const qt::MemoryHandle set = corvane::test::NewContainer();
            ASSERT_EQ(qt::WriteEffectSettings(settings, set.get()), noErr);
            const auto unpacked = qt::ReadEffectSettings(set.get());
            ASSERT_TRUE(read && unpacked) << effect->name;
            EXPECT_EQ(read->effect, effect);
            for (std::size_t i = 0; i < effect->parameters.size(); ++i) {
                EXPECT_NEAR(read->values.At(i), settings.values.At(i), 0.0005) << effect->parameters[i].key;
                EXPECT_NEAR(unpacked->values.At(i), settings.values.At(i), 1.0 / 65'536)
                    << effect->parameters[i].key;
            }
        }
    }
}

// With random settings, and with each parameter at both ends.
TEST(EffectTable, EveryEffectPaintsEveryPixelOfAnySize) {
    constexpr std::uint32_t kStale = 0x0012'3456;
    std::mt19937 random(5);
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 7}, {7, 1}, {2, 2}, {17, 33}, {40, 16}}) {
        const qt::PixelImage a = MakeNoise(width, height, false, 1);
        const qt::PixelImage b = MakeNoise(40, 20, false, 2);
        for (const qt::Effect* effect : qt::Effects()) {
            for (int round = 0; round < 3 + 2 * static_cast<int>(effect->parameters.size()); ++round) {
                qt::EffectSettings settings = RandomSettings(*effect, random);
                if (const auto i = static_cast<std::size_t>(round / 2); i < effect->parameters.size())
                    settings.values.Set(i, round % 2 == 0 ? -1e9 : 1e9);
                qt::PixelImage out = MakeImage(width, height, kStale);
                ASSERT_EQ(qt::RenderEffect(settings, a, &b, out), noErr);
                EXPECT_EQ(std::ranges::count(PixelsOf(out), kStale), 0) << effect->name;
            }
        }
    }
}

TEST(EffectTable, OpaqueImagesStayOpaqueAndOneSourceKeepsItsAlpha) {
    const qt::PixelImage opaque = MakeNoise(40, 30, false);
    const qt::PixelImage clear = MakeNoise(40, 30, true);
    for (const qt::Effect* effect : qt::Effects()) {
        const qt::EffectSettings settings = {effect, qt::EffectValues(effect->parameters)};
        const qt::PixelImage out = Render(settings, opaque, &opaque);
        ForEachPixel(out, [&](int, int, std::uint32_t pixel) { EXPECT_EQ(qt::Alpha(pixel), 255U); });
        // A blur spreads alpha as well, and a tile has one for all its pixels.
        if (effect->sources == 2 || effect == &qt::kBlurEffect || effect == &qt::kMosaicEffect) continue;
        const qt::PixelImage kept = Render(settings, clear);
        EXPECT_TRUE(kept.has_alpha);
        ForEachPixel(kept, [&](int x, int y, std::uint32_t pixel) {
            EXPECT_EQ(qt::Alpha(pixel), qt::Alpha(clear.Row(y)[x])) << effect->name;
        });
    }
}

// The bands of a large image fit together: each part of it looks like the same part drawn on one thread.
TEST(EffectTable, LargeImagesHaveNoSeams) {
    const qt::PixelImage large = MakeNoise(1000, 700, false);
    const auto rows = [](const qt::PixelImage& image, std::int32_t top, std::int32_t height) {
        return MakeImage(1000, height, [&](int x, int y) { return image.Row(top + y)[x]; });
    };
    const qt::PixelImage part = rows(large, 305, 90);
    for (const char* type : {"blur", "shrp", "edge", "embs", "genk", "brco", "hslb", "tint"}) {
        const qt::PixelImage whole = rows(Render(type, {}, large), 325, 50);
        EXPECT_EQ(Difference(whole, rows(Render(type, {}, part), 20, 50)), 0U) << type;
    }
}

TEST(EffectTable, WithoutWhatItNeedsAnImageStaysAsItIs) {
    const qt::PixelImage a = MakeNoise(9, 5, true);
    EXPECT_EQ(Difference(Render(Settings("dslv"), a), a), 0U) << "no second source";
    qt::PixelImage out;
    ASSERT_EQ(qt::RenderEffect(std::nullopt, a, nullptr, out), noErr);
    EXPECT_EQ(Difference(out, a), 0U);
    EXPECT_TRUE(out.has_alpha);
}

} // namespace
