#include "plugin/time_text.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace corvane {
namespace {

constexpr char kNoTerminator = '\0';
constexpr double kFixedOne = 65536; // 1.0 in 16.16 fixed point

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

void SkipBlanks(std::string_view& cursor) {
    cursor.remove_prefix(std::min(cursor.find_first_not_of(" \t"), cursor.size()));
}

std::optional<std::uint32_t> ParseFieldBeforeColon(std::string_view& cursor) {
    const std::optional<std::uint32_t> value = ParseTimeField(cursor, ':');
    if (!value || cursor.empty()) return std::nullopt;
    cursor.remove_prefix(1);
    return value;
}

// `cursor` stands behind the decimal point.
std::optional<double> ParseFraction(std::string_view cursor) {
    constexpr std::size_t kMostDigits = 9; // all that a field can hold, and more than a time does
    SkipBlanks(cursor);
    const std::size_t digits = std::min(cursor.find_first_not_of("0123456789"), cursor.size());
    const std::size_t counted = std::min(digits, kMostDigits); // quotients have more
    std::string_view field = cursor.substr(0, counted);
    cursor.remove_prefix(digits);
    SkipBlanks(cursor);
    if (!cursor.empty()) return std::nullopt;
    return ParseTimeField(field, kNoTerminator).value_or(0) / std::pow(10.0, counted);
}

std::chrono::seconds LocalOffset() {
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    return std::chrono::seconds(localtime_r(&now, &local) == nullptr ? 0 : local.tm_gmtoff);
}

} // namespace

bool ParseTimeSign(std::string_view& cursor) {
    SkipBlanks(cursor);
    const bool minus = cursor.starts_with('-');
    if (minus) cursor.remove_prefix(1);
    return minus;
}

std::optional<std::uint32_t> ParseTimeField(std::string_view& cursor, char terminator) {
    SkipBlanks(cursor);
    if (cursor.empty()) return 0;
    if (!IsDigit(cursor.front())) return std::nullopt;
    std::uint32_t value = 0;
    for (; !cursor.empty() && IsDigit(cursor.front()); cursor.remove_prefix(1))
        value = value * 10 + static_cast<std::uint32_t>(cursor.front() - '0');
    SkipBlanks(cursor);
    if (!cursor.empty() && cursor.front() != terminator) return std::nullopt;
    return value;
}

std::optional<std::int32_t> ParseTime(std::string_view text) {
    const std::optional<std::uint32_t> hours = ParseFieldBeforeColon(text);
    if (!hours) return std::nullopt;
    const std::optional<std::uint32_t> minutes = ParseFieldBeforeColon(text);
    if (!minutes) return std::nullopt;
    const std::optional<std::uint32_t> seconds = ParseTimeField(text, '.');
    if (!seconds) return std::nullopt;
    const std::optional<double> fraction = text.empty() ? 0.0 : ParseFraction(text.substr(1));
    if (!fraction) return std::nullopt;

    // Below 2^61 even with all three numbers at their largest.
    const double total = (*hours * 60.0 + *minutes) * 60.0 + *seconds + *fraction;
    return static_cast<std::int32_t>(static_cast<std::int64_t>(total * kFixedOne));
}

std::string FormatDuration(std::int32_t time, std::int32_t time_scale) {
    // Adding zero turns a negative zero, which would print its sign, into a plain one.
    const double total = time_scale == 0 ? 0.0 : static_cast<double>(time) / time_scale + 0.0;
    const double hours = std::floor(std::fmod(total / 3600, 60)) + 0.0;
    const double minutes = std::floor(std::fmod(total / 60, 60)) + 0.0;
    const double seconds = std::floor(std::fmod(total, 60)) + 0.0;
    const double milliseconds = (total - std::floor(total)) * 1000;
    std::array<char, 40> text;
    const int length = std::snprintf(text.data(), text.size(), "%03.0lf:%02.0lf:%02.0lf.%03.0lf", hours,
                                     minutes, seconds, milliseconds);
    return {text.data(), static_cast<std::size_t>(length)};
}

std::string FormatDateTime(std::uint32_t date_time) {
    using namespace std::chrono;
    constexpr sys_days kEpoch = January / 1 / year(1904);
    const sys_seconds moment = kEpoch + seconds(date_time) + LocalOffset();
    const auto day_start = floor<days>(moment);
    const year_month_day date(day_start);
    const hh_mm_ss time(moment - day_start);
    std::array<char, 40> text;
    const int length =
        std::snprintf(text.data(), text.size(), "%2.2d-%2.2d-%4.4d %2.2d:%2.2d:%2.2d",
                      static_cast<int>(static_cast<unsigned>(date.day())),
                      static_cast<int>(static_cast<unsigned>(date.month())), static_cast<int>(date.year()),
                      static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                      static_cast<int>(time.seconds().count()));
    return {text.data(), static_cast<std::size_t>(length)};
}

} // namespace corvane
