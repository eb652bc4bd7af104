#pragma once

#include "platform/quicktime/movies/movies.h"

#include <cstdint>
#include <string>

namespace corvane {

/// What is told of a movie's sounds: an information list (see information_list.h) of at most 16,383 bytes.
/// Code -2055 for a movie without sound, else that of FileFormatOf or of the media layer.
struct SoundInfo {
    std::int32_t code = 0;
    std::string text;
};
SoundInfo DescribeSounds(Movie movie);

} // namespace corvane
