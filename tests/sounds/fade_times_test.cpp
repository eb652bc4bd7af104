#include "sounds/fade_times.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

constexpr std::int32_t kScale = 600;
constexpr std::int32_t kTenSeconds = 10 * kScale;

constexpr FadeTime At(double seconds) {
    return {static_cast<Fixed>(seconds * 65536), false};
}
constexpr FadeTime FromEnd(double seconds) {
    return {static_cast<Fixed>(seconds * 65536), true};
}

void ExpectSpan(FadeTime start, FadeTime end, double expected_start, double expected_end) {
    const Fade fade = SanitiseFade({start, end, 1.0F, true}, kTenSeconds, kScale);
    EXPECT_EQ(fade.start, static_cast<Fixed>(expected_start * 65536));
    EXPECT_EQ(fade.end, static_cast<Fixed>(expected_end * 65536));
}

TEST(FadeTimes, BringsTheSpanIntoTheMovie) {
    ExpectSpan(At(2), At(5), 2, 5);
    ExpectSpan(At(5), At(2), 2, 5);
    ExpectSpan(FromEnd(3), At(0), 0, 7);
    ExpectSpan(FromEnd(3), FromEnd(0), 7, 10);
    ExpectSpan(FromEnd(11), FromEnd(1), 0, 9);
    ExpectSpan(At(11), At(12), 0, 10);
    ExpectSpan(At(0), At(10), 0, 10);
    ExpectSpan(At(0.25), At(9.75), 0.25, 9.75);
}

TEST(FadeTimes, ReplacesLevelsOutsideTheRange) {
    for (const float level : {-0.1F, 1.1F, 3.0F}) {
        EXPECT_EQ(SanitiseFade({At(0), At(1), level, true}, kTenSeconds, kScale).level, 0.0F);
        EXPECT_EQ(SanitiseFade({At(0), At(1), level, false}, kTenSeconds, kScale).level, 1.0F);
    }
    EXPECT_EQ(SanitiseFade({At(0), At(1), 0.25F, true}, kTenSeconds, kScale).level, 0.25F);
}

TEST(FadeTimes, ComputesInSinglePrecision) {
    // 20,000.3 s at 44,100 units: 882,013,230 units in exact arithmetic, of which a single keeps multiples
    // of 64. Expected values from Python, each step through struct.pack("f"):
    //   u = f(f(f(1310739660) / 65536) * f(44100)) = 882013248.0; int(f(f(u / f(44100)) * 65536)) =
    //   1310739712
    const Fade fade =
        SanitiseFade({{1310739660, false}, {1900000000, false}, 1, false}, 2'000'000'000, 44100);
    EXPECT_EQ(fade.start, 1310739712);
    EXPECT_EQ(MakeFadeRamp(fade, 44100).begin, 882013248);
}

TEST(FadeTimes, StaysInRangeInVeryLongMovies) {
    const Fade fade = SanitiseFade({FromEnd(0), FromEnd(32767), 1, true}, 2'147'483'647, 1);
    EXPECT_EQ(fade.end, 2'147'483'647);
    EXPECT_EQ(fade.start, 2'147'483'647);
}

} // namespace
} // namespace corvane
