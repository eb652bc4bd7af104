#include "fuzz/fuzz_target.h"
#include "plugin/time_text.h"

// Any text is a time or none; a time that is shown and read again is the same to half a millisecond.
void Fuzz(std::string_view text) {
    const auto time = corvane::ParseTime(text);
    if (!time || *time < 0) return;
    constexpr std::int32_t kScale = 65536;
    constexpr std::int32_t kTolerance = kScale / 2000 + 2;
    const std::string shown = corvane::FormatDuration(*time, kScale);
    if (shown.ends_with(".1000")) return; // a second that milliseconds rounded up to
    const auto again = corvane::ParseTime(shown);
    Require(again && std::abs(*again - *time) <= kTolerance);
}
