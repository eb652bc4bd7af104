// Texts of times, durations and dates.
//
// A time text is H:M:S or H:M:S.F: decimal numbers of any length, blanks and tabs around each allowed, no
// upper bounds ("0:90:0" is 5,400 seconds). A missing result means that the text has another form.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// Steps over blanks and tabs, and over a "-" behind them; true when there was one.
bool ParseTimeSign(std::string_view& cursor);

/// Reads one number up to `terminator` or the end of the text, and stops in front of either. The end where
/// digits should begin reads as 0. Numbers of more than 32 bits wrap.
std::optional<std::uint32_t> ParseTimeField(std::string_view& cursor, char terminator);

/// Seconds as signed 16.16 fixed point. From 32,768 seconds on only the low 32 bits are kept.
std::optional<std::int32_t> ParseTime(std::string_view text);

/// "HHH:MM:SS.mmm" of a count of units, `time_scale` of them a second; hours wrap at 60, milliseconds that
/// round up read 1000. A scale of 0 counts as no time at all.
std::string FormatDuration(std::int32_t time, std::int32_t time_scale);

/// "DD-MM-YYYY HH:MM:SS" of the seconds since 1 January 1904 UTC, shifted by today's local offset: the
/// offset of the date shown doesn't count.
std::string FormatDateTime(std::uint32_t date_time);

} // namespace corvane
