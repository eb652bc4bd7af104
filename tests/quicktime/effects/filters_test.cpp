// Effects with one source, against ImageMagick where it has the same, else against values by hand.
#include "tests/quicktime/effects/effect_test.h"

namespace {

using namespace effect_test;

constexpr std::int32_t kWidth = 60;
constexpr std::int32_t kHeight = 40;

/// Our drawing of an image against ImageMagick's.
void ExpectLikeMagick(const char* type, Texts texts, const std::string& options, std::uint32_t tolerance) {
    const Magick magick;
    const qt::PixelImage image = MakeNoise(kWidth, kHeight, false);
    magick.Write(image, "a.pam");
    EXPECT_LE(Difference(Render(type, texts, image), magick.Convert("@a.pam " + options, kWidth, kHeight)),
              tolerance)
        << type << " " << options;
}

TEST(Filters, DrawWhatImageMagickDraws) {
    ExpectLikeMagick("hslb", {{"hue", "90"}}, "-modulate 100,100,150", 1);
    ExpectLikeMagick("hslb", {{"hue", "-180"}}, "-modulate 100,100,0", 1);
    ExpectLikeMagick("hslb", {{"hue", "0"}, {"saturation", "-100"}}, "-modulate 100,0,100", 1);
    ExpectLikeMagick("solr", {{"threshold", "50"}}, "-solarize 50%", 1);
    ExpectLikeMagick("levl", {{"black", "51"}, {"white", "204"}, {"gamma", "1.6"}}, "-level 20%,80%,1.6", 1);
    ExpectLikeMagick("rgbb", {{"red", "150"}, {"green", "50"}, {"blue", "0"}},
                     "-channel R -evaluate multiply 1.5 -channel G -evaluate multiply 0.5 "
                     "-channel B -evaluate multiply 0 +channel",
                     1);
    ExpectLikeMagick("genk",
                     {{"w11", "1"},
                      {"w12", "2"},
                      {"w13", "-1"},
                      {"w21", "0"},
                      {"w22", "3"},
                      {"w23", "0.5"},
                      {"w31", "0"},
                      {"w32", "-0.5"},
                      {"w33", "1"}},
                     "-define convolve:scale=! -morphology Correlate '3: 1,2,-1 0,3,0.5 0,-0.5,1'", 1);
    ExpectLikeMagick("mosa", {{"size", "10"}}, "-scale 10% -scale 1000%", 1);
}

TEST(Filters, BrightnessAndContrastTurnAboutTheMiddle) {
    const qt::PixelImage greys = MakeImage(256, 1, [](std::int32_t x, std::int32_t) {
        return 0xFF00'0000 | static_cast<std::uint32_t>(x) * 0x01'0101;
    });
    const auto drawn = [&](const char* brightness, const char* contrast, std::int32_t grey) {
        return qt::Red(
            Render("brco", {{"brightness", brightness}, {"contrast", contrast}}, greys).Row(0)[grey]);
    };
    EXPECT_EQ(drawn("0", "0", 77), 77U);
    EXPECT_EQ(drawn("20", "0", 100), 151U);
    EXPECT_EQ(drawn("100", "0", 0), 255U);
    EXPECT_EQ(drawn("0", "-100", 200), 128U);
    EXPECT_EQ(drawn("0", "100", 126), 0U);
    EXPECT_EQ(drawn("0", "100", 129), 255U);
    EXPECT_GT(drawn("0", "30", 200), 220U);
    EXPECT_LT(drawn("0", "30", 50), 30U);
}

TEST(Filters, PosterizeKeepsBlackAndWhiteAndSoManyLevels) {
    const qt::PixelImage greys = MakeImage(256, 1, [](std::int32_t x, std::int32_t) {
        return 0xFF00'0000 | static_cast<std::uint32_t>(x) * 0x01'0101;
    });
    const qt::PixelImage out = Render("post", {{"levels", "5"}}, greys);
    std::vector<std::uint32_t> levels(out.Row(0), out.Row(0) + 256);
    levels.erase(std::unique(levels.begin(), levels.end()), levels.end());
    EXPECT_EQ(levels,
              (std::vector<std::uint32_t>{0xFF00'0000, 0xFF40'4040, 0xFF80'8080, 0xFFBF'BFBF, 0xFFFF'FFFF}));
}

TEST(Filters, TintGoesFromDarkToLightByBrightness) {
    const qt::PixelImage image = MakeImage(3, 1, [](std::int32_t x, std::int32_t) {
        return std::array{0xFF00'0000, 0xFFFF'FFFF, 0xFF00'FF00}.at(static_cast<std::size_t>(x));
    });
    const qt::PixelImage out = Render("tint", {{"dark", "#200000"}, {"light", "#ff0040"}}, image);
    EXPECT_EQ(out.Row(0)[0], 0xFF20'0000);
    EXPECT_EQ(out.Row(0)[1], 0xFFFF'0040);
    EXPECT_NEAR(qt::Red(out.Row(0)[2]), 0x20 + 0.587 * (0xFF - 0x20), 1);
    EXPECT_EQ(Difference(Render("tint", {{"strength", "0"}}, image), image), 0U);
}

/// Black to the left of column 10, white from there.
qt::PixelImage Step() {
    return MakeImage(20, 5, [](std::int32_t x, std::int32_t) { return x < 10 ? 0xFF00'0000 : 0xFFFF'FFFF; });
}

TEST(Filters, EdgesAreFoundWhereBrightnessChanges) {
    const qt::PixelImage edges = Render("edge", {}, Step());
    for (std::int32_t x = 0; x < 20; ++x)
        EXPECT_EQ(qt::Green(edges.Row(2)[x]), x == 9 || x == 10 ? 255U : 0U) << x;
    const qt::PixelImage inverted = Render("edge", {{"invert", "1"}}, Step());
    EXPECT_EQ(inverted.Row(2)[9], 0xFF00'0000);
    EXPECT_EQ(inverted.Row(2)[3], 0xFFFF'FFFF);
    const qt::PixelImage red =
        MakeImage(20, 5, [](std::int32_t x, std::int32_t) { return x < 10 ? 0xFF00'0000 : 0xFFFF'0000; });
    EXPECT_EQ(Render("edge", {{"colour", "1"}}, red).Row(2)[9], 0xFFFF'0000);
}

TEST(Filters, EmbossIsBrightTowardsTheLight) {
    const auto height = [](const char* angle) {
        return qt::Green(Render("embs", {{"angle", angle}}, Step()).Row(2)[9]);
    };
    EXPECT_EQ(height("180"), 255U) << "the step rises to the right: its face looks left";
    EXPECT_EQ(height("0"), 0U);
    EXPECT_EQ(height("90"), 128U);
    EXPECT_EQ(Render("embs", {{"colour", "1"}, {"depth", "0"}}, Step()).Row(2)[12], 0xFFFF'FFFF);
}

TEST(Filters, SharpeningOvershootsAtEdgesOnly) {
    const qt::PixelImage step =
        MakeImage(40, 5, [](std::int32_t x, std::int32_t) { return x < 20 ? 0xFF60'6060 : 0xFFA0'A0A0; });
    const qt::PixelImage sharp = Render("shrp", {{"amount", "100"}, {"radius", "2"}}, step);
    EXPECT_LT(qt::Red(sharp.Row(2)[19]), 0x50U);
    EXPECT_GT(qt::Red(sharp.Row(2)[20]), 0xB0U);
    EXPECT_EQ(sharp.Row(2)[0], 0xFF60'6060);
    EXPECT_EQ(Difference(Render("shrp", {{"threshold", "40"}}, step), step), 0U)
        << "all differences are below";
}

TEST(Filters, FilmNoiseIsTheSameForTheSameNumber) {
    const qt::PixelImage grey = MakeImage(300, 200, 0xFF80'8080);
    const auto noise = [&](const char* seed) {
        return Render("fmns", {{"seed", seed}, {"grain", "50"}, {"fading", "0"}}, grey);
    };
    EXPECT_EQ(Difference(noise("7"), noise("7")), 0U);
    EXPECT_GT(Difference(noise("7"), noise("8")), 20U);
    const Texts clean = {{"grain", "0"}, {"dust", "0"}, {"hairs", "0"}, {"scratches", "0"}, {"fading", "0"}};
    EXPECT_EQ(Difference(Render("fmns", clean, grey), grey), 0U);
    // Grain alone changes all places a little and the mean not at all.
    const qt::PixelImage grain =
        Render("fmns", {{"dust", "0"}, {"hairs", "0"}, {"scratches", "0"}, {"fading", "0"}}, grey);
    double sum = 0;
    for (std::int32_t y = 0; y < 200; ++y) {
        for (std::int32_t x = 0; x < 300; ++x) sum += qt::Red(grain.Row(y)[x]);
    }
    EXPECT_NEAR(sum / 60'000, 128, 0.5);
}

} // namespace
