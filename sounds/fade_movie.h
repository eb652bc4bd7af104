#pragma once

#include "platform/quicktime/movies/movies.h"
#include "sounds/fade_times.h"

#include <cstdint>

namespace corvane {

/// Makes the faded part of a movie: one that fades out ends with the fade, one that fades in begins with it.
/// The volume goes along when the result is played or exported; `movie` keeps the ramp too. Codes of
/// FirstSoundTrack and of the media layer: a fade without duration has none to go along.
std::int32_t MakeFadedMovie(Movie movie, const FadeRequest& request, qt::OwnedMovie& faded);

} // namespace corvane
