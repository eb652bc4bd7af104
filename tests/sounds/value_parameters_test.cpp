#include "sounds/value_parameters.h"

#include "tests/support/calls.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

FM_DataVect ListOf(std::string_view text) {
    FM_DataVect list;
    list.values.push_back(test::TextValue(text));
    return list;
}

std::string TimeOf(std::string_view text, TimeSign sign) {
    const Read<FadeTime> time = ReadTimeParameter(ListOf(text), 0, sign);
    if (time.code != 0) return std::to_string(time.code);
    return (time.value.from_end ? "-" : "") + std::to_string(time.value.seconds);
}

TEST(TimeParameter, MayHaveASignWhereThatIsAllowed) {
    EXPECT_EQ(TimeOf(" 0 : 0 : 5 ", TimeSign::kRefused), "327680");
    EXPECT_EQ(TimeOf("0:0:5", TimeSign::kFromEnd), "327680");
    EXPECT_EQ(TimeOf(" \t-0:0:0.5", TimeSign::kFromEnd), "-32768");
    EXPECT_EQ(TimeOf("-0:0:5", TimeSign::kRefused), "-50");
    EXPECT_EQ(TimeOf("--0:0:5", TimeSign::kFromEnd), "-50");
    EXPECT_EQ(TimeOf("5", TimeSign::kFromEnd), "-50");
    EXPECT_EQ(TimeOf("", TimeSign::kRefused), "-50");
    EXPECT_EQ(ReadTimeParameter(ListOf("0:0:5"), 1, TimeSign::kRefused).code, -50);
    EXPECT_EQ(TimeOf("0:0:" + std::string(1019, ' ') + "7x", TimeSign::kRefused), "458752")
        << "what follows 1,024 characters doesn't count";
}

TEST(ColorParameter, IsAWebColor) {
    const Read<RgbColor> color = ReadHtmlColorParameter(ListOf(" #ff8000 \r"), 0);
    EXPECT_EQ(color.code, 0);
    EXPECT_EQ(color.value, (RgbColor{255, 128, 0}));
    EXPECT_EQ(ReadHtmlColorParameter(ListOf("ff8000"), 0).code, -50);
    EXPECT_EQ(ReadHtmlColorParameter(ListOf("#ff8000"), 1).code, -50);
}

} // namespace
} // namespace corvane
