// Sound resources ('snd '): a movie's sound as one, and a movie of one.
#pragma once

#include "platform/quicktime/movies/movies.h"

/// Turns the sound of a track (null: the movie's first 'soun' track; invalidTrack without any) into a sound
/// resource of format 1: 8-bit, one channel, 44,100 Hz, all frames of the track's media. `type` is 'snd ',
/// else cantFindHandler; `resource` is resized.
OSErr PutMovieIntoTypedHandle(Movie movie, Track track, OSType type, Handle resource);

/// Adds the sound of a resource to the movie's end as a track of its own, whose samples stay in memory.
/// Formats 1 and 2; standard and extended headers, and compressed ones with µ-law, A-law, IMA 4:1, MACE and
/// uncompressed samples. `type` is 'snd ', else cantFindHandler; badFileFormat for what is no sound resource,
/// or has no samples in it. Fewer samples than the header says shorten the sound.
OSErr PasteHandleIntoMovie(Handle resource, OSType type, Movie movie);
