// Playing movies: their sounds, on the machine's sound output.
//
// A movie plays while it is active and its rate is above 0. What plays is decoded ahead by MoviesTask, so
// that whoever plays has to call it at least every 200 ms. Disposing of a movie ends its playing. Sounds
// begin, stop and end in ramps of a few milliseconds, as do changes of volume and balance.
#pragma once

#include "platform/quicktime/movies/movies.h"

inline constexpr std::uint32_t hintsUseSoundInterp = 0x0080;
inline constexpr std::uint32_t hintsInactive = 0x0800;

/// The first sets the rate to the preferred rate. GetMoviesError tells what failed: noHardwareErr (-200)
/// without a sound output, the codes of sounds that can't be read.
void StartMovie(Movie movie);
void StopMovie(Movie movie);
void GoToBeginningOfMovie(Movie movie);

/// Decodes ahead what plays, of all movies. With a movie given it then waits until that movie is done, at
/// most for the rest of the time. GetMoviesError: the code of a sound that broke off.
void MoviesTask(Movie movie, std::int32_t milliseconds);
/// Whether the movie has come to its end. One that has come there plays no more: its rate is 0.
bool IsMovieDone(Movie movie);

void SetMovieActive(Movie movie, bool active);
/// The volume's sign silences; 256 plays the sound as it is, more makes it louder up to clipping.
void SetMovieVolume(Movie movie, std::int16_t volume);
std::int16_t GetMovieVolume(Movie movie);
/// What StartMovie sets the rate to.
void SetMoviePreferredRate(Movie movie, Fixed rate);
Fixed GetMoviePreferredRate(Movie movie);
/// 0 stops, in place; the pitch follows the rate. More than some 16 times the normal rate is not reached.
/// Backwards nothing plays: with a negative rate the movie is done.
void SetMovieRate(Movie movie, Fixed rate);
Fixed GetMovieRate(Movie movie);
void SetMovieAudioBalance(Movie movie, float balance); ///< -1 left, 1 right
float GetMovieAudioBalance(Movie movie);
/// Kept; sounds are always interpolated.
void SetMoviePlayHints(Movie movie, std::uint32_t flags, std::uint32_t mask);
