#pragma once

#include "platform/quicktime/movies/media.h"
#include "sounds/tone_generator.h"

#include <cstdint>
#include <span>

namespace corvane {

/// Computes a tone (see tone_generator.h) and adds it to a sound media that is being edited. `phase`, where
/// not null, is the tone's starting point, and gets that of the tone behind it.
std::int32_t GenerateTone(Media media, const ToneRequest& request, double* phase = nullptr);

/// Gives the movie a sound track, in memory, of tones one behind the other: a wave that goes on in the next
/// tone does so without a step. All tones have the first one's sample rate.
std::int32_t AddTones(Movie movie, std::span<const ToneRequest> tones);

/// Adds the sound by which formats can be tried: three notes upward (or downward) after a moment of silence.
/// `note_duration` is that of each, in 16.16 seconds; `layout` says how samples are made, as in a request.
std::int32_t MakeChime(Movie movie, Fixed note_duration, std::uint32_t sample_rate, std::uint16_t layout,
                       bool descending);

} // namespace corvane
