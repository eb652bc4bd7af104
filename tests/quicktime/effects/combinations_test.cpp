// Effects with two sources.
#include "tests/quicktime/effects/effect_test.h"

namespace {

using namespace effect_test;

constexpr std::uint32_t kRed = 0xFFFF'0000;
constexpr std::uint32_t kBlue = 0xFF00'00FF;

TEST(Combinations, AlphaCompositorDrawsWhatImageMagickDraws) {
    const Magick magick;
    const qt::PixelImage a = MakeNoise(50, 30, true, 1);
    const qt::PixelImage b = MakeNoise(50, 30, true, 2);
    magick.Write(a, "a.pam");
    magick.Write(b, "b.pam");
    for (const auto& [ours, theirs] :
         {std::pair{"over", "Over"}, {"in", "In"}, {"out", "Out"}, {"atop", "Atop"}, {"xor", "Xor"}}) {
        const qt::PixelImage out = Render("blnd", {{"operation", ours}}, a, &b);
        const qt::PixelImage expected =
            magick.Convert("@b.pam @a.pam -compose " + std::string(theirs) + " -composite", 50, 30);
        EXPECT_LE(Difference(out, expected), 1U) << ours;
    }
}

TEST(Combinations, AlphaThatIsMixedIntoTheColoursIsTakenOut) {
    const qt::PixelImage b = MakeImage(1, 1, kBlue);
    const auto drawn = [&](std::uint32_t a, const char* kind) {
        return Render("blnd", {{"alpha", kind}}, MakeImage(1, 1, a), &b).Row(0)[0];
    };
    EXPECT_EQ(drawn(0x80FF'0000, "straight"), 0xFF80'007F) << "half red over blue";
    EXPECT_EQ(drawn(0x8080'0000, "black"), 0xFF80'007F);
    EXPECT_EQ(drawn(0x80FF'7F7F, "white"), 0xFF80'007F);
    const qt::PixelImage a = MakeImage(1, 1, kRed);
    EXPECT_EQ(Render("blnd", {{"opacity", "0"}}, a, &b).Row(0)[0], kBlue);
}

TEST(Combinations, CrossFadeGoesFromOneToTheOther) {
    const qt::PixelImage a = MakeNoise(20, 10, false, 1);
    const qt::PixelImage b = MakeNoise(20, 10, false, 2);
    EXPECT_EQ(Difference(Render("dslv", {{"percent", "0"}}, a, &b), a), 0U);
    EXPECT_EQ(Difference(Render("dslv", {{"percent", "100"}}, a, &b), b), 0U);
    const qt::PixelImage mixed = Render("dslv", {{"percent", "25"}}, a, &b);
    for (std::int32_t x = 0; x < 20; ++x)
        EXPECT_NEAR(qt::Red(mixed.Row(3)[x]), 0.75 * qt::Red(a.Row(3)[x]) + 0.25 * qt::Red(b.Row(3)[x]), 1);
}

TEST(Combinations, ChromaKeyReplacesTheColourInLightAndShadow) {
    const qt::PixelImage b = MakeImage(1, 1, kBlue);
    const auto drawn = [&](std::uint32_t a, const char* softness) {
        return Render("ckey", {{"key", "#00c800"}, {"tolerance", "20"}, {"softness", softness}},
                      MakeImage(1, 1, a), &b)
            .Row(0)[0];
    };
    EXPECT_EQ(drawn(0xFF00'C800, "0"), kBlue);
    EXPECT_EQ(drawn(0xFF00'A000, "0"), kBlue) << "in shadow";
    EXPECT_EQ(drawn(kRed, "0"), kRed);
    EXPECT_EQ(drawn(0xFFFF'FFFF, "0"), 0xFFFF'FFFF);
    const std::uint32_t between = drawn(0xFF70'C870, "50");
    EXPECT_GT(qt::Red(between), 0U);
    EXPECT_LT(qt::Red(between), 0x70U);
}

TEST(Combinations, ChannelsComeFromWhereTheyAreSaid) {
    const qt::PixelImage a = MakeImage(1, 1, 0x1122'3344U);
    const qt::PixelImage b = MakeImage(1, 1, 0x5566'7788U);
    const auto drawn = [&](Texts texts) { return Render("chnl", texts, a, &b).Row(0)[0]; };
    EXPECT_EQ(drawn({{"red", "a-blue"}, {"green", "b-alpha"}, {"blue", "none"}, {"alpha", "b-red"}}),
              0x6644'5500U);
    EXPECT_EQ(drawn({{"red", "b-green"}, {"green", "a-alpha"}, {"blue", "full"}, {"alpha", "a-green"}}),
              0x3377'11FFU);
}

/// Which of the two images is seen, as a line of letters for each row of the picture.
std::string Seen(const char* type, Texts texts) {
    const qt::PixelImage b = MakeImage(8, 4, kBlue);
    std::string lines;
    ForEachPixel(Render(type, texts, MakeImage(8, 4, kRed), &b), [&](int x, int, std::uint32_t pixel) {
        lines += pixel == kRed ? 'a' : pixel == kBlue ? 'b' : '?';
        if (x == 7) lines += '\n';
    });
    return lines;
}

TEST(Combinations, WipesIrisesAndSlidesGoTheirWays) {
    const auto wiped = [](const char* direction, const char* percent) {
        return Seen("smpt", {{"direction", direction}, {"percent", percent}});
    };
    const auto slid = [](const char* side) { return Seen("slid", {{"from", side}, {"percent", "25"}}); };
    const auto iris = [](const char* shape, const char* percent, const char* closing) {
        return Seen("iris", {{"shape", shape}, {"percent", percent}, {"closing", closing}});
    };
    const auto all = [](const std::string& line) { return line + line + line + line; };
    const std::string a = "aaaaaaaa\n";
    const std::string b = "bbbbbbbb\n";
    for (const char* direction : {"right", "left", "down", "up", "right-down", "left-down", "right-up",
                                  "left-up", "doors-wide", "doors-high", "blinds", "clock"}) {
        EXPECT_EQ(wiped(direction, "0"), all(a)) << direction;
        EXPECT_EQ(wiped(direction, "100"), all(b)) << direction;
    }
    EXPECT_EQ(wiped("right", "25"), all("bbaaaaaa\n"));
    EXPECT_EQ(wiped("left", "25"), all("aaaaaabb\n"));
    EXPECT_EQ(wiped("down", "25"), b + a + a + a);
    EXPECT_EQ(wiped("up", "25"), a + a + a + b);
    EXPECT_EQ(wiped("doors-wide", "50"), all("aabbbbaa\n"));
    EXPECT_EQ(wiped("doors-high", "50"), a + b + b + a);
    EXPECT_EQ(wiped("right-down", "20"), "bbaaaaaa\n" + a + a + a);
    EXPECT_EQ(wiped("left-up", "20"), a + a + a + "aaaaaabb\n");
    EXPECT_EQ(wiped("clock", "25"), "aaaabbbb\naaaabbbb\n" + a + a);
    EXPECT_EQ(iris("rectangle", "50", "0"), a + "aabbbbaa\naabbbbaa\n" + a);
    EXPECT_EQ(iris("rectangle", "50", "1"), b + "bbaaaabb\nbbaaaabb\n" + b);
    EXPECT_EQ(iris("cross", "30", "0"), "aaabbaaa\n" + b + b + "aaabbaaa\n");
    EXPECT_EQ(slid("left"), all("bbaaaaaa\n"));
    EXPECT_EQ(slid("right"), all("aaaaaabb\n"));
    EXPECT_EQ(slid("top"), b + a + a + a);
    EXPECT_EQ(slid("bottom"), a + a + a + b);
}

TEST(Combinations, PushMovesBothImages) {
    const qt::PixelImage a = MakeNoise(20, 10, false, 1);
    const qt::PixelImage b = MakeNoise(20, 10, false, 2);
    const auto expect = [&](const char* side, std::int32_t a_right, std::int32_t a_down, std::int32_t b_right,
                            std::int32_t b_down) {
        const qt::PixelImage out = Render("push", {{"from", side}, {"percent", "30"}}, a, &b);
        ForEachPixel(out, [&](int x, int y, std::uint32_t pixel) {
            const int from_x = x - a_right;
            const int from_y = y - a_down;
            const bool from_a = from_x >= 0 && from_x < 20 && from_y >= 0 && from_y < 10;
            EXPECT_EQ(pixel, from_a ? a.Row(from_y)[from_x] : b.Row(y - b_down)[x - b_right])
                << side << " " << x << " " << y;
        });
    };
    expect("left", 6, 0, -14, 0);
    expect("right", -6, 0, 14, 0);
    expect("top", 0, 3, 0, -7);
    expect("bottom", 0, -3, 0, 7);
}

TEST(Combinations, GradientWipeAndDissolveGoByBrightnessAndByChance) {
    const qt::PixelImage a = Greys();
    const qt::PixelImage b = MakeImage(256, 1, kBlue);
    const qt::PixelImage dark = Render("matt", {{"percent", "40.1"}, {"softness", "0"}}, a, &b);
    const qt::PixelImage light =
        Render("matt", {{"order", "light"}, {"percent", "40.1"}, {"softness", "0"}}, a, &b);
    for (std::int32_t x = 0; x < 256; ++x) {
        EXPECT_EQ(dark.Row(0)[x], x <= 102 ? kBlue : a.Row(0)[x]) << x;
        EXPECT_EQ(light.Row(0)[x] == kBlue, x >= 153) << x;
    }
    const qt::PixelImage large = MakeImage(100, 100, kRed);
    const qt::PixelImage other = MakeImage(100, 100, kBlue);
    const qt::PixelImage half = Render("pxds", {{"percent", "30"}, {"size", "2"}}, large, &other);
    int replaced = 0;
    ForEachPixel(half, [&](int x, int y, std::uint32_t pixel) {
        EXPECT_EQ(pixel, half.Row(y / 2 * 2)[x - x % 2]);
        replaced += pixel == kBlue ? 1 : 0;
    });
    EXPECT_NEAR(replaced, 3000, 250);
}

TEST(Combinations, BeyondASmallerSecondSourceThereIsNothing) {
    const qt::PixelImage a = MakeImage(6, 4, kRed);
    const qt::PixelImage b = MakeImage(3, 2, kBlue);
    const qt::PixelImage out = Render("dslv", {{"percent", "100"}}, a, &b);
    EXPECT_TRUE(out.has_alpha);
    ForEachPixel(out, [](int x, int y, std::uint32_t pixel) {
        EXPECT_TRUE(x < 3 && y < 2 ? pixel == kBlue : qt::Alpha(pixel) == 0) << x << " " << y;
    });
    const qt::PixelImage larger = MakeImage(50, 40, kBlue);
    EXPECT_FALSE(Render("smpt", {{"percent", "100"}}, a, &larger).has_alpha);
}

} // namespace
