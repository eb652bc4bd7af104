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

/// Which of the two images is seen, as a row of letters for each line of the picture.
std::vector<std::string> Seen(const char* type, Texts texts) {
    const qt::PixelImage a = MakeImage(8, 4, kRed);
    const qt::PixelImage b = MakeImage(8, 4, kBlue);
    const qt::PixelImage out = Render(type, texts, a, &b);
    std::vector<std::string> lines(4);
    for (std::int32_t y = 0; y < 4; ++y) {
        for (std::int32_t x = 0; x < 8; ++x) {
            const std::uint32_t pixel = out.Row(y)[x];
            lines[static_cast<std::size_t>(y)] += pixel == kRed ? 'a' : pixel == kBlue ? 'b' : '?';
        }
    }
    return lines;
}

TEST(Combinations, WipesGoTheirWays) {
    using Lines = std::vector<std::string>;
    const auto wiped = [](const char* direction, const char* percent) {
        return Seen("smpt", {{"direction", direction}, {"percent", percent}});
    };
    const Lines all_a(4, "aaaaaaaa");
    const Lines all_b(4, "bbbbbbbb");
    for (const char* direction : {"right", "left", "down", "up", "right-down", "left-down", "right-up",
                                  "left-up", "doors-wide", "doors-high", "blinds", "clock"}) {
        EXPECT_EQ(wiped(direction, "0"), all_a) << direction;
        EXPECT_EQ(wiped(direction, "100"), all_b) << direction;
    }
    EXPECT_EQ(wiped("right", "25"), Lines(4, "bbaaaaaa"));
    EXPECT_EQ(wiped("left", "25"), Lines(4, "aaaaaabb"));
    EXPECT_EQ(wiped("down", "25"), (Lines{"bbbbbbbb", "aaaaaaaa", "aaaaaaaa", "aaaaaaaa"}));
    EXPECT_EQ(wiped("up", "25"), (Lines{"aaaaaaaa", "aaaaaaaa", "aaaaaaaa", "bbbbbbbb"}));
    EXPECT_EQ(wiped("doors-wide", "50"), Lines(4, "aabbbbaa"));
    EXPECT_EQ(wiped("doors-high", "50"), (Lines{"aaaaaaaa", "bbbbbbbb", "bbbbbbbb", "aaaaaaaa"}));
    EXPECT_EQ(wiped("right-down", "20"), (Lines{"bbaaaaaa", "aaaaaaaa", "aaaaaaaa", "aaaaaaaa"}));
    EXPECT_EQ(wiped("left-up", "20"), (Lines{"aaaaaaaa", "aaaaaaaa", "aaaaaaaa", "aaaaaabb"}));
    EXPECT_EQ(wiped("clock", "25"), (Lines{"aaaabbbb", "aaaabbbb", "aaaaaaaa", "aaaaaaaa"}));
    EXPECT_EQ(Seen("iris", {{"shape", "rectangle"}, {"percent", "50"}}),
              (Lines{"aaaaaaaa", "aabbbbaa", "aabbbbaa", "aaaaaaaa"}));
    EXPECT_EQ(Seen("iris", {{"shape", "cross"}, {"percent", "30"}}),
              (Lines{"aaabbaaa", "bbbbbbbb", "bbbbbbbb", "aaabbaaa"}));
    EXPECT_EQ(Seen("iris", {{"shape", "rectangle"}, {"percent", "50"}, {"closing", "1"}}),
              (Lines{"bbbbbbbb", "bbaaaabb", "bbaaaabb", "bbbbbbbb"}));
}

TEST(Combinations, SlidesComeFromTheirSides) {
    using Lines = std::vector<std::string>;
    const auto slid = [](const char* side) { return Seen("slid", {{"from", side}, {"percent", "25"}}); };
    EXPECT_EQ(slid("left"), Lines(4, "bbaaaaaa"));
    EXPECT_EQ(slid("right"), Lines(4, "aaaaaabb"));
    EXPECT_EQ(slid("top"), (Lines{"bbbbbbbb", "aaaaaaaa", "aaaaaaaa", "aaaaaaaa"}));
    EXPECT_EQ(slid("bottom"), (Lines{"aaaaaaaa", "aaaaaaaa", "aaaaaaaa", "bbbbbbbb"}));
}

TEST(Combinations, PushMovesBothImages) {
    const qt::PixelImage a = MakeNoise(20, 10, false, 1);
    const qt::PixelImage b = MakeNoise(20, 10, false, 2);
    const auto expect = [&](const char* side, std::int32_t a_right, std::int32_t a_down, std::int32_t b_right,
                            std::int32_t b_down) {
        const qt::PixelImage out = Render("push", {{"from", side}, {"percent", "30"}}, a, &b);
        const auto within = [](std::int32_t x, std::int32_t y) {
            return x >= 0 && x < 20 && y >= 0 && y < 10;
        };
        for (std::int32_t y = 0; y < 10; ++y) {
            for (std::int32_t x = 0; x < 20; ++x) {
                const bool from_a = within(x - a_right, y - a_down);
                const std::uint32_t expected =
                    from_a ? a.Row(y - a_down)[x - a_right] : b.Row(y - b_down)[x - b_right];
                ASSERT_EQ(out.Row(y)[x], expected) << side << " " << x << " " << y;
            }
        }
    };
    expect("left", 6, 0, -14, 0);
    expect("right", -6, 0, 14, 0);
    expect("top", 0, 3, 0, -7);
    expect("bottom", 0, -3, 0, 7);
}

TEST(Combinations, GradientWipeAndDissolveGoByBrightnessAndByChance) {
    const qt::PixelImage a = MakeImage(256, 1, [](std::int32_t x, std::int32_t) {
        return 0xFF00'0000 | static_cast<std::uint32_t>(x) * 0x01'0101;
    });
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
    for (std::int32_t y = 0; y < 100; ++y) {
        for (std::int32_t x = 0; x < 100; ++x) {
            EXPECT_EQ(half.Row(y)[x], half.Row(y / 2 * 2)[x - x % 2]);
            replaced += half.Row(y)[x] == kBlue ? 1 : 0;
        }
    }
    EXPECT_NEAR(replaced, 3000, 250);
}

TEST(Combinations, BeyondASmallerSecondSourceThereIsNothing) {
    const qt::PixelImage a = MakeImage(6, 4, kRed);
    const qt::PixelImage b = MakeImage(3, 2, kBlue);
    const qt::PixelImage out = Render("dslv", {{"percent", "100"}}, a, &b);
    EXPECT_TRUE(out.has_alpha);
    for (std::int32_t y = 0; y < 4; ++y) {
        for (std::int32_t x = 0; x < 6; ++x) {
            const bool inside = x < 3 && y < 2;
            EXPECT_EQ(qt::Alpha(out.Row(y)[x]), inside ? 255U : 0U);
            EXPECT_TRUE(!inside || out.Row(y)[x] == kBlue);
        }
    }
    const qt::PixelImage larger = MakeImage(50, 40, kBlue);
    const qt::PixelImage covered = Render("smpt", {{"percent", "100"}}, a, &larger);
    EXPECT_FALSE(covered.has_alpha);
    EXPECT_EQ(Difference(covered, MakeImage(6, 4, kBlue)), 0U);
}

} // namespace
