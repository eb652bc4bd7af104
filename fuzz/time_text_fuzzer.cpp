#include "plugin/time_text.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

// Any text is a time or none; a time that is shown and read again is the same to half a millisecond.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto time = corvane::ParseTime(text);
    if (!time || *time < 0) return 0;
    constexpr std::int32_t kScale = 65536;
    constexpr std::int32_t kTolerance = kScale / 2000 + 2;
    const std::string shown = corvane::FormatDuration(*time, kScale);
    if (shown.ends_with(".1000")) return 0; // a second that milliseconds rounded up to
    const auto again = corvane::ParseTime(shown);
    if (!again || std::abs(*again - *time) > kTolerance) std::abort();
    return 0;
}
