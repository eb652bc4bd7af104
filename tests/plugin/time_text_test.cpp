#include "plugin/time_text.h"

#include "tests/support/environment_variable.h"

#include <gtest/gtest.h>

#include <ctime>
#include <limits>

namespace corvane {
namespace {

constexpr std::int32_t kSecond = 65536;

TEST(TimeText, ReadsFieldsOfAnySize) {
    EXPECT_EQ(ParseTime("0:0:5"), 5 * kSecond);
    EXPECT_EQ(ParseTime("0:90:0"), 5400 * kSecond);
    EXPECT_EQ(ParseTime("1:02:75"), (3600 + 120 + 75) * kSecond);
    EXPECT_EQ(ParseTime(" 0\t: 1 :\t2.5 "), 62 * kSecond + kSecond / 2);
    EXPECT_EQ(ParseTime("0:0:"), 0) << "an empty last field is 0";
}

TEST(TimeText, CountsTheDigitsOfTheFraction) {
    EXPECT_EQ(ParseTime("0:0:1.05"), static_cast<std::int32_t>(1.05 * kSecond));
    EXPECT_EQ(ParseTime("0:0:1.000"), kSecond);
    EXPECT_EQ(ParseTime("0:0:1.100"), static_cast<std::int32_t>(1.1 * kSecond));
    EXPECT_EQ(ParseTime("0:0:5."), 5 * kSecond);
    EXPECT_EQ(ParseTime("0:0:1.3333333333333333"), 4 * kSecond / 3) << "a quotient's digits don't wrap";
    EXPECT_EQ(ParseTime("0:0:5. 5 "), 5 * kSecond + kSecond / 2);
    EXPECT_EQ(ParseTime("0:0:0." + std::string(400, '0') + "1"), 0) << "the divisor is beyond a double";
}

TEST(TimeText, RefusesEverythingElse) {
    for (const char* text : {"", "5", "0:5", "0::5", ":0:5", "0:0:5x", "0:0:.5", "0:0:5.x", "0:0:5.5.5",
                             "0:0:5:0", "-0:0:5", "0:0:5.5x", "0:0 0:5", "x"})
        EXPECT_EQ(ParseTime(text), std::nullopt) << text;
}

TEST(TimeText, KeepsTheLow32BitsOfATimeTooLong) {
    EXPECT_EQ(ParseTime("0:0:32767"), 32767 * kSecond);
    EXPECT_EQ(ParseTime("0:0:32768"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(ParseTime("0:0:65537"), kSecond);
    EXPECT_EQ(ParseTime("0:0:4294967301"), 5 * kSecond) << "2^32 + 5 wraps in its field already";
    EXPECT_TRUE(ParseTime("4294967295:4294967295:4294967295.9"));
}

TEST(Duration, ShowsHoursMinutesSecondsMilliseconds) {
    EXPECT_EQ(FormatDuration(8325, 100), "000:01:23.250");
    EXPECT_EQ(FormatDuration(1, 1000), "000:00:00.001");
    EXPECT_EQ(FormatDuration(0, 600), "000:00:00.000");
    EXPECT_EQ(FormatDuration(3 * 3600 + 59 * 60 + 59, 1), "003:59:59.000");
    EXPECT_EQ(FormatDuration(61 * 3600, 1), "001:00:00.000") << "hours wrap at 60";
    EXPECT_EQ(FormatDuration(19999, 10000), "000:00:01.1000") << "milliseconds may round up to 1000";
    EXPECT_EQ(FormatDuration(1, 2000), "000:00:00.000") << "half a millisecond rounds to even";
    EXPECT_EQ(FormatDuration(3, 2000), "000:00:00.002");
}

TEST(Duration, StaysReadableForTimesThatMakeNoSense) {
    EXPECT_EQ(FormatDuration(5, 0), "000:00:00.000");
    EXPECT_EQ(FormatDuration(0, -600), "000:00:00.000");
    EXPECT_EQ(FormatDuration(-60, 1), "-01:-1:00.000");
    EXPECT_EQ(FormatDuration(std::numeric_limits<std::int32_t>::max(), 1), "003:14:07.000");
    EXPECT_FALSE(FormatDuration(std::numeric_limits<std::int32_t>::min(), -1).empty());
}

std::string InZone(const char* zone, std::uint32_t time) {
    const test::EnvironmentVariable variable("TZ", zone);
    tzset();
    return FormatDateTime(time);
}

TEST(DateTime, CountsFrom1904) {
    EXPECT_EQ(InZone("UTC0", 0), "01-01-1904 00:00:00");
    EXPECT_EQ(InZone("UTC0", 3255948129), "05-03-2007 14:02:09");
    EXPECT_EQ(InZone("UTC0", 59U * 86400), "29-02-1904 00:00:00");
    EXPECT_EQ(InZone("UTC0", std::numeric_limits<std::uint32_t>::max()), "06-02-2040 06:28:15");
}

TEST(DateTime, ShiftsByTodaysOffset) {
    EXPECT_EQ(InZone("XXX-5:30", 3255948129), "05-03-2007 19:32:09");
    EXPECT_EQ(InZone("XXX+3", 3600), "31-12-1903 22:00:00") << "before the first date";
    EXPECT_EQ(InZone("XXX+3", std::numeric_limits<std::uint32_t>::max()), "06-02-2040 03:28:15");
}

} // namespace
} // namespace corvane
