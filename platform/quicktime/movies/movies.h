// Movies: tracks over media, and selections. Their playing is in movie_playback.h.
//
// A movie owns its tracks, a track its media: disposing of the movie ends them all. Times are counts of units
// of the time scale of what they belong to, 64 bits wide. A movie opened from a sound has the sound's sample
// rate as its time scale. Nothing here copies samples: copies and selections refer to the same ones. A movie
// may be used on one thread at a time; movies that share samples count as one.
//
// Operations answer 0 or a code of the classic numbering, which GetMoviesError gives again; one that answers
// a movie, track or media answers null on failure.
#pragma once

#include "platform/quicktime/data_references.h"

#include <cstdint>
#include <memory>
#include <span>

namespace qt {
struct MovieRecord;
struct TrackRecord;
struct MediaRecord;
} // namespace qt

using Movie = qt::MovieRecord*;
using Track = qt::TrackRecord*;
using Media = qt::MediaRecord*;
using TimeValue = std::int64_t;
using TimeScale = std::int32_t;

inline constexpr OSErr noMovieFound = -2048;
inline constexpr OSErr invalidMedia = -2008;
inline constexpr OSErr invalidTrack = -2009;
inline constexpr OSErr invalidMovie = -2010;
inline constexpr OSErr invalidSampleTable = -2011;
inline constexpr OSErr invalidDuration = -2014;
inline constexpr OSErr invalidTime = -2015;
inline constexpr OSErr invalidEditState = -2023;
inline constexpr OSErr noDefaultDataRef = -2051;

inline constexpr std::int16_t kFullVolume = 256; ///< volumes are signed 8.8; negative ones are silent
inline constexpr Fixed kNormalRate = 0x10000;

inline constexpr std::int32_t movieTrackMediaType = 1;      ///< the track's media is of this type
inline constexpr std::int32_t movieTrackCharacteristic = 2; ///< 'ears' sounds, 'eyes' shows
inline constexpr std::int32_t movieTrackEnabledOnly = 4;

/// Code of the latest operation that failed or succeeded.
OSErr GetMoviesError();

/// An empty movie, active, with 600 units a second. The flags are not used.
Movie NewMovie(std::int32_t flags);
void DisposeMovie(Movie movie); ///< null is allowed

TimeScale GetMovieTimeScale(Movie movie);
TimeValue GetMovieDuration(Movie movie); ///< to the end of the track that ends last

/// Tracks. Indices count from 1; the order is that of making.
std::int32_t GetMovieTrackCount(Movie movie);
Track GetMovieIndTrack(Movie movie, std::int32_t index);
/// The index-th track whose media has that type or characteristic; null, with code 0, when there is none.
Track GetMovieIndTrackType(Movie movie, std::int32_t index, OSType type, std::int32_t flags);
Track NewMovieTrack(Movie movie, Fixed width, Fixed height, std::int16_t volume);
void DisposeMovieTrack(Track track);
Movie GetTrackMovie(Track track);
Media GetTrackMedia(Track track);        ///< null, with invalidMedia, for a track without media
TimeValue GetTrackDuration(Track track); ///< in the movie's units, from the movie's beginning
void SetTrackEnabled(Track track, bool enabled);
std::int16_t GetTrackVolume(Track track);
void SetTrackVolume(Track track, std::int16_t volume);
void GetTrackDimensions(Track track, Fixed* width, Fixed* height);
std::uint32_t GetTrackCreationTime(Track track);
std::uint32_t GetTrackModificationTime(Track track);
/// Refers from `track` to `other` of the same movie; `index` counts the references of this type, from 1.
OSErr AddTrackReference(Track track, Track other, OSType type, std::int32_t* index);

/// Puts `duration` units of the track's media, from `media_time` on, at `track_time` (movie units; -1: behind
/// what is there). `rate` 0x10000 plays at the media's own speed. What the track held there is replaced.
OSErr InsertMediaIntoTrack(Track track, TimeValue track_time, TimeValue media_time, TimeValue duration,
                           Fixed rate);

/// The selection: [start, start + duration) in movie units; a negative duration is invalidDuration, a start
/// beyond the movie is brought to its end.
OSErr SetMovieSelection(Movie movie, TimeValue start, TimeValue duration);
void GetMovieSelection(Movie movie, TimeValue* start, TimeValue* duration);
/// The selected part as a movie of its own, with its tracks' settings, references and input maps. Null with
/// invalidDuration when nothing is selected.
Movie CopyMovieSelection(Movie movie);
/// Replaces the selection by all of `source`, and selects what came in. Later parts of the movie move. Each
/// track of the source becomes a track of the movie, so that both keep their settings.
OSErr PasteMovieSelection(Movie movie, Movie source);

namespace qt {

struct MovieDisposer {
    void operator()(Movie movie) const { DisposeMovie(movie); }
};

/// Owner of a movie.
using OwnedMovie = std::unique_ptr<MovieRecord, MovieDisposer>;

} // namespace qt
