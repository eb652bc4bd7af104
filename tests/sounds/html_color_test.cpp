#include "sounds/html_color.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(HtmlColor, ReadsSixDigitsAndTakesMissingOnesAsZero) {
    const std::pair<const char*, RgbColor> cases[] = {{" \r #FF8000\r  ", {255, 128, 0}},
                                                      {"#0a1B2c", {10, 27, 44}},
                                                      {"#F", {240, 0, 0}},
                                                      {"#12345", {0x12, 0x34, 0x50}},
                                                      {"#", {0, 0, 0}}};
    for (const auto& [text, color] : cases) EXPECT_EQ(ParseHtmlColor(text), color) << text;
}

TEST(HtmlColor, RefusesOtherTexts) {
    for (const char* text : {"", " ", "ff8000", "x#ff8000", "##ff800", "#ff8000x", "#ff80000", "#ff 8000",
                             "#F ", "#gg0000", "#ff800\n", "\t#ff8000", "#ff8000\n", "#-10000"}) {
        EXPECT_EQ(ParseHtmlColor(text), std::nullopt) << text;
    }
}

} // namespace
} // namespace corvane
