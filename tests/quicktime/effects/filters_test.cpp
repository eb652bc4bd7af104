// Effects with one source, against ImageMagick where it has the same, else against values by hand.
#include "tests/quicktime/effects/effect_test.h"

namespace {

using namespace effect_test;

/// Our drawing of an image against ImageMagick's.
void ExpectLikeMagick(const char* type, Texts texts, const std::string& options) {
    const Magick magick;
    const qt::PixelImage image = MakeNoise(60, 40, false);
    magick.Write(image, "a.pam");
    EXPECT_LE(Difference(Render(type, texts, image), magick.Convert("@a.pam " + options, 60, 40)), 1U)
        << type << " " << options;
}

TEST(Filters, DrawWhatImageMagickDraws) {
    ExpectLikeMagick("hslb", {{"hue", "90"}}, "-modulate 100,100,150");
    ExpectLikeMagick("hslb", {{"hue", "-180"}}, "-modulate 100,100,0");
    ExpectLikeMagick("hslb", {{"hue", "0"}, {"saturation", "-100"}}, "-modulate 100,0,100");
    ExpectLikeMagick("solr", {{"threshold", "50"}}, "-solarize 50%");
    ExpectLikeMagick("levl", {{"black", "51"}, {"white", "204"}, {"gamma", "1.6"}}, "-level 20%,80%,1.6");
    ExpectLikeMagick("rgbb", {{"red", "150"}, {"green", "50"}, {"blue", "0"}},
                     "-channel R -evaluate multiply 1.5 -channel G -evaluate multiply 0.5 "
                     "-channel B -evaluate multiply 0 +channel");
    const Texts kernel = {{"w11", "1"},   {"w12", "2"}, {"w13", "-1"},   {"w21", "0"}, {"w22", "3"},
                          {"w23", "0.5"}, {"w31", "0"}, {"w32", "-0.5"}, {"w33", "1"}};
    ExpectLikeMagick("genk", kernel,
                     "-define convolve:scale=! -morphology Correlate '3: 1,2,-1 0,3,0.5 0,-0.5,1'");
    ExpectLikeMagick("mosa", {{"size", "10"}}, "-scale 10% -scale 1000%");
}

TEST(Filters, BrightnessAndContrastTurnAboutTheMiddle) {
    const auto drawn = [](const char* brightness, const char* contrast, std::int32_t grey) {
        return qt::Red(
            Render("brco", {{"brightness", brightness}, {"contrast", contrast}}, Greys()).Row(0)[grey]);
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
    Pixels levels = PixelsOf(Render("post", {{"levels", "5"}}, Greys()));
    levels.erase(std::unique(levels.begin(), levels.end()), levels.end());
    EXPECT_EQ(levels, (Pixels{0xFF00'0000, 0xFF40'4040, 0xFF80'8080, 0xFFBF'BFBF, 0xFFFF'FFFF}));
}

TEST(Filters, TintGoesFromDarkToLightByBrightness) {
    constexpr std::uint32_t kColours[] = {0xFF00'0000, 0xFFFF'FFFF, 0xFF00'FF00};
    const qt::PixelImage image = MakeImage(3, 1, [&](int x, int) { return kColours[x]; });
    const qt::PixelImage out = Render("tint", {{"dark", "#200000"}, {"light", "#ff0040"}}, image);
    EXPECT_EQ(out.Row(0)[0], 0xFF20'0000);
    EXPECT_EQ(out.Row(0)[1], 0xFFFF'0040);
    EXPECT_NEAR(qt::Red(out.Row(0)[2]), 0x20 + 0.587 * (0xFF - 0x20), 1);
    EXPECT_EQ(Difference(Render("tint", {{"strength", "0"}}, image), image), 0U);
}

/// Dark to the left of the middle, light from there.
qt::PixelImage Step(std::uint32_t dark = 0xFF00'0000, std::uint32_t light = 0xFFFF'FFFF) {
    return MakeImage(20, 5, [=](int x, int) { return x < 10 ? dark : light; });
}

TEST(Filters, EdgesAreFoundWhereBrightnessChanges) {
    const qt::PixelImage edges = Render("edge", {}, Step());
    for (std::int32_t x = 0; x < 20; ++x)
        EXPECT_EQ(qt::Green(edges.Row(2)[x]), x == 9 || x == 10 ? 255U : 0U) << x;
    const qt::PixelImage inverted = Render("edge", {{"invert", "1"}}, Step());
    EXPECT_EQ(inverted.Row(2)[9], 0xFF00'0000);
    EXPECT_EQ(inverted.Row(2)[3], 0xFFFF'FFFF);
    const qt::PixelImage red = Step(0xFF00'0000, 0xFFFF'0000);
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
    const qt::PixelImage step = Step(0xFF60'6060, 0xFFA0'A0A0);
    const qt::PixelImage sharp = Render("shrp", {{"amount", "100"}, {"radius", "2"}}, step);
    EXPECT_LT(qt::Red(sharp.Row(2)[9]), 0x50U);
    EXPECT_GT(qt::Red(sharp.Row(2)[10]), 0xB0U);
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
    ForEachPixel(grain, [&](int, int, std::uint32_t pixel) { sum += qt::Red(pixel); });
    EXPECT_NEAR(sum / 60'000, 128, 0.5);
}

} // namespace
