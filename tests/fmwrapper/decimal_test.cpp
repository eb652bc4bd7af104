#include "platform/fmwrapper/decimal.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <string>

using fm::Compare;
using fm::Decimal;

namespace {

Decimal Number(const std::string& digits) {
    const auto value = Decimal::Parse(digits);
    EXPECT_TRUE(value.has_value()) << digits;
    return value.value_or(Decimal());
}

std::string Text(const std::optional<Decimal>& value) {
    return value ? value->ToText() : "none";
}

} // namespace

TEST(Decimal, PrintsWhatItParsesInShortestForm) {
    const std::pair<const char*, const char*> cases[] = {
        {"0", "0"},         {"-0", "0"},
        {"-0.0", "0"},      {"007", "7"},
        {"12.50", "12.5"},  {".5", "0.5"},
        {"-.75", "-0.75"},  {"5.", "5"},
        {"+3", "3"},        {"100", "100"},
        {"0.001", "0.001"}, {"123456789012345678901234567890.5", "123456789012345678901234567890.5"}};
    for (const auto& [digits, text] : cases) EXPECT_EQ(Text(Decimal::Parse(digits)), text) << digits;
    for (const char* refused : {"", "-", ".", "1.2.3", "1e5", "12 ", "--1", "1-", "abc"})
        EXPECT_FALSE(Decimal::Parse(refused)) << refused;
}

TEST(Decimal, ReadsTheDigitsOfAnyText) {
    const std::pair<const char*, const char*> cases[] = {
        {"12 px", "12"},   {"-3.5 dB", "-3.5"},     {"a1b2c3", "123"},
        {"1.2.3", "1.23"}, {"$1,234.50", "1234.5"}, {"x-7", "-7"},
        {"7-", "7"},       {"no digits", "none"},   {"", "none"},
        {"-.", "none"},    {"größe 4", "4"}};
    for (const auto& [text, number] : cases) EXPECT_EQ(Text(Decimal::FromText(text)), number) << text;
}

TEST(Decimal, AddsSubtractsAndMultipliesExactly) {
    EXPECT_EQ(Text(Number("0.1") + Number("0.2")), "0.3");
    EXPECT_EQ(Text(Number("1") - Number("0.9")), "0.1");
    EXPECT_EQ(Text(Number("0.25") + Number("0.75")), "1");
    EXPECT_EQ(Text(Number("99999999999999999999") * Number("99999999999999999999")),
              "9999999999999999999800000000000000000001");
    EXPECT_EQ(Text(Number("-1.5") * Number("0.2")), "-0.3");
    const std::string largest(Decimal::kMaxDigits - 1, '9');
    EXPECT_EQ(Text(Number(largest) * Number(largest)), "none");
}

TEST(Decimal, DividesToSixteenSignificantDigits) {
    EXPECT_EQ(Text(Number("1") / Number("4")), "0.25");
    EXPECT_EQ(Text(Number("1") / Number("3")), "0.3333333333333333");
    EXPECT_EQ(Text(Number("2") / Number("3")).substr(0, 17), "0.666666666666666");
    EXPECT_EQ(Text(Number("-6") / Number("0.003")), "-2000");
    EXPECT_EQ(Text(Number("1") / Number("0")), "none");
    const double small =
        (Number("1") / Number("700000000000000000000000000000")).value_or(Decimal()).ToDouble();
    EXPECT_NEAR(small * 7e29, 1.0, 1e-15);
}

TEST(Decimal, RoundsHalfAwayFromZero) {
    const std::tuple<const char*, int, const char*> cases[] = {
        {"2.5", 0, "3"},      {"-2.5", 0, "-3"},      {"2.45", 1, "2.5"}, {"2.449", 1, "2.4"},
        {"1250", -2, "1300"}, {"1249", -2, "1200"},   {"0.5", -3, "0"},   {"1.5", 9, "1.5"},
        {"9.99", 1, "10"},    {"4", -2147483647, "0"}};
    for (const auto& [number, places, rounded] : cases)
        EXPECT_EQ(Number(number).Rounded(places).ToText(), rounded) << number << " to " << places;
    EXPECT_EQ(Number("-1.2").Floor().ToText(), "-2");
    EXPECT_EQ(Number("1.8").Floor().ToText(), "1");
    EXPECT_EQ(Number("-1.8").Truncated().ToText(), "-1");
}

TEST(Decimal, ComparesAcrossScales) {
    EXPECT_EQ(Compare(Number("1.50"), Number("1.5")), 0);
    EXPECT_LT(Compare(Number("-2"), Number("-1.999")), 0);
    EXPECT_GT(Compare(Number("0.10000000000000000001"), Number("0.1")), 0);
}

TEST(Decimal, ToIntegerTruncatesAndHoldsTheEndsOfTheRange) {
    EXPECT_EQ(Number("-1.9").ToInteger(), -1);
    EXPECT_EQ(Number("9223372036854775807").ToInteger(), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(Number("9223372036854775808").ToInteger(), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(Number("-1" + std::string(300, '0')).ToInteger(), std::numeric_limits<std::int64_t>::min());
}

TEST(Decimal, TakesTheShortestDecimalOfADouble) {
    EXPECT_EQ(Text(Decimal::FromDouble(0.1)), "0.1");
    EXPECT_EQ(Text(Decimal::FromDouble(-0.0)), "0");
    EXPECT_EQ(Text(Decimal::FromDouble(1e23)), "1" + std::string(23, '0'));
    EXPECT_EQ(Text(Decimal::FromDouble(-2.5e-7)), "-0.00000025");
    EXPECT_EQ(Text(Decimal::FromDouble(std::numeric_limits<double>::infinity())), "none");
    EXPECT_EQ(Text(Decimal::FromDouble(std::nan(""))), "none");
}

TEST(Decimal, GivesEveryDoubleBack) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 20000; ++i) {
        const auto value = std::bit_cast<double>(random());
        if (!std::isfinite(value)) continue;
        const auto decimal = Decimal::FromDouble(value);
        ASSERT_TRUE(decimal.has_value()) << value;
        ASSERT_EQ(decimal->ToDouble(), value);
    }
    using Limits = std::numeric_limits<double>;
    for (const double value : {Limits::max(), Limits::lowest(), Limits::min(), Limits::denorm_min()})
        EXPECT_EQ(Decimal::FromDouble(value).value_or(Decimal()).ToDouble(), value);
    EXPECT_EQ(Number("1" + std::string(400, '0')).ToDouble(), Limits::max());
    EXPECT_EQ(Number("-1" + std::string(400, '0')).ToDouble(), Limits::lowest());
    EXPECT_EQ(Number("0." + std::string(390, '0') + "1").ToDouble(), 0.0);
}
