#include "platform/win32/file_times.h"

#include <algorithm>
#include <cstdint>

namespace win32 {
namespace {

constexpr std::int64_t kUnitsPerSecond = 10'000'000;
constexpr std::int64_t kNanosecondsPerUnit = 100;
constexpr std::int64_t kSecondsTo1970 = 11'644'473'600; // from 1601
constexpr std::int64_t kLastSecond = INT64_MAX / kUnitsPerSecond - 1;

} // namespace

FILETIME ToFileTime(const timespec& time) {
    const std::int64_t seconds =
        std::clamp<std::int64_t>(time.tv_sec, -kSecondsTo1970, kLastSecond - kSecondsTo1970);
    const auto units = static_cast<std::uint64_t>((seconds + kSecondsTo1970) * kUnitsPerSecond +
                                                  time.tv_nsec / kNanosecondsPerUnit);
    return {static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
}

SYSTEMTIME ToLocalTime(const FILETIME& time) {
    const std::uint64_t units = std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
    const auto seconds = static_cast<std::time_t>(units / kUnitsPerSecond) - kSecondsTo1970;
    std::tm local{};
    localtime_r(&seconds, &local);
    const auto word = [](int value) { return static_cast<WORD>(value); };
    constexpr int kFirstYear = 1900;
    constexpr std::uint64_t kUnitsPerMillisecond = 10'000;
    return {word(local.tm_year + kFirstYear),
            word(local.tm_mon + 1),
            word(local.tm_wday),
            word(local.tm_mday),
            word(local.tm_hour),
            word(local.tm_min),
            word(local.tm_sec),
            static_cast<WORD>(units % kUnitsPerSecond / kUnitsPerMillisecond)};
}

} // namespace win32
