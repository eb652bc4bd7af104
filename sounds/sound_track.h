// The sound track of a movie that the sound functions work on, and the file behind it.
#pragma once

#include "files/file_spec.h"
#include "platform/quicktime/movies/media.h"

#include <cstdint>

namespace corvane {

/// Code -2009 without a track, -2008 for a track without media, -2010 without a movie: an empty container
/// gives none.
struct SoundTrack {
    std::int32_t code = 0;
    Track track = nullptr;
    Media media = nullptr;
};

/// The first track of a movie that can be heard.
SoundTrack FirstSoundTrack(Movie movie);

/// Where the sound lies: the movie's own reference, or that of its first sound track's media.
std::int32_t SoundReference(Movie movie, qt::DataReference& reference);

/// The file of a movie; -2053 for a sound in memory.
std::int32_t MovieFileOf(Movie movie, XFileSpec& file);

} // namespace corvane
