// The span and the volumes of a fade, in single precision throughout: its rounding decides where a fade of
// a long movie begins.
#pragma once

#include "platform/quicktime/types.h"

namespace corvane {

/// A time as it was read: seconds from the beginning, or back from the end.
struct FadeTime {
    Fixed seconds = 0;
    bool from_end = false;
};

struct FadeRequest {
    FadeTime start;
    FadeTime end;
    float level = 1.0F;
    bool fade_out = false;
};

/// Seconds from the beginning, start not after end; level in 0..1.
struct Fade {
    Fixed start = 0;
    Fixed end = 0;
    float level = 1.0F;
    bool fade_out = false;
};

/// Brings a request into a movie of this duration, in units of which `time_scale` (positive) make a second.
/// A start outside the movie becomes its beginning, an end outside it the movie's end, a level outside 0..1
/// silence when the sound fades out and full volume when it fades in.
Fade SanitiseFade(const FadeRequest& request, std::int32_t duration, std::int32_t time_scale);

/// Volume goes linearly from one value to the other over [begin, end).
struct FadeRamp {
    std::int32_t begin = 0; ///< movie units
    std::int32_t end = 0;
    std::int16_t first_volume = 0; ///< 256 is full; a fade to or from level 1 has 255
    std::int16_t last_volume = 0;
};
FadeRamp MakeFadeRamp(const Fade& fade, std::int32_t time_scale);

} // namespace corvane
