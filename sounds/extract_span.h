#pragma once

#include "platform/quicktime/movies/movies.h"
#include "platform/quicktime/types.h"

#include <cstdint>

namespace corvane {

/// The part of a movie between two times (16.16 seconds) as a movie of its own, which refers to the same
/// samples. Codes: those of FirstSoundTrack; -2014 when nothing lies between the times; the media layer's.
std::int32_t ExtractSpan(Movie movie, std::int64_t begin, std::int64_t end, qt::OwnedMovie& extract);

} // namespace corvane
