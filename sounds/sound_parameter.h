// Sounds as parameters of the functions.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"
#include "platform/quicktime/movies/movies.h"

#include <cstdint>

namespace corvane {

/// A container whose streams hold no sound resource.
inline constexpr std::int32_t kNoSoundInContainer = -2114;

/// Opens the sound of a parameter: a text that names a file; a container with a sound resource; or one with a
/// reference text, of which the first line that leads to a file counts. A placeholder movie, as reference
/// movies are, gives the movie that it stands for.
///
/// An empty container is code 0 without a movie. Else the movie is null when the code is not 0: -50 for an
/// index outside the list and for a value that is neither text nor container; -2114; -2000 when the file
/// that a placeholder stands for is gone; codes of paths and of the media layer.
std::int32_t OpenSoundParameter(const FM_DataVect& parameters, std::int32_t index, qt::OwnedMovie& movie);

} // namespace corvane
