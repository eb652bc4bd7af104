#include "sounds/html_color.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(HtmlColor, ReadsSixDigits) {
    EXPECT_EQ(ParseHtmlColor("#ff8000"), (RgbColor{255, 128, 0}));
    EXPECT_EQ(ParseHtmlColor(" \r #FF8000\r  "), (RgbColor{255, 128, 0}));
    EXPECT_EQ(ParseHtmlColor("#0a1B2c"), (RgbColor{10, 27, 44}));
}

TEST(HtmlColor, TakesMissingDigitsAsZero) {
    EXPECT_EQ(ParseHtmlColor("#F"), (RgbColor{240, 0, 0}));
    EXPECT_EQ(ParseHtmlColor("#12345"), (RgbColor{0x12, 0x34, 0x50}));
    EXPECT_EQ(ParseHtmlColor("#"), (RgbColor{0, 0, 0}));
}

TEST(HtmlColor, RefusesOtherTexts) {
    for (const char* text : {"", " ", "ff8000", "x#ff8000", "##ff800", "#ff8000x", "#ff80000", "#ff 8000",
                             "#F ", "#gg0000", "#ff800\n", "\t#ff8000", "#ff8000\n", "#-10000"}) {
        EXPECT_EQ(ParseHtmlColor(text), std::nullopt) << text;
    }
}

} // namespace
} // namespace corvane
