// Movies that stand for another file: a track over the file's own samples, and a text for those who show it.
#pragma once

#include "platform/quicktime/movies/movies.h"

#include <string>
#include <string_view>

namespace qt {

/// What the text track of such a movie says.
inline constexpr std::string_view kPlaceholderText = "This file has no preview";

/// Adds to an empty movie that has a file (see CreateMovieStorage): a track over the samples of the source's
/// first track of type 'soun', or else 'MPEG', from time 0 over its media's whole duration; and a text track
/// of 320 by 200 with the placeholder text for the whole duration. AddMovieToStorage then writes a file whose
/// sound lies in the source's. invalidTrack for a source without such a track.
OSErr AddReferenceTracks(Movie source, Movie target);

/// The text of the first sample of the movie's first text track; empty without one. What such a movie stands
/// for is the data reference (GetMediaDataRef) of its first enabled sound track's media.
std::string FirstText(Movie movie);

} // namespace qt
