// Volumes that change while a track plays.
#pragma once

#include "platform/quicktime/movies/movie_model.h"

namespace qt {

/// A gain that goes straight from one value to another; elsewhere it is 1. Times in seconds of the movie.
struct VolumeRamp {
    double begin = 0;
    double end = 0;
    double from = 1;
    double to = 1;
};

/// The ramps that the tween tracks of the track's input map describe. What is malformed is no ramp.
std::vector<VolumeRamp> VolumeRampsOf(const TrackRecord& track);

/// Multiplies interleaved frames at `rate`, the first being the movie's `first`-th, by the gain of each.
void ApplyGain(std::span<const VolumeRamp> ramps, double volume, std::int64_t first, std::uint32_t rate,
               std::span<float> frames, std::uint32_t channels);

} // namespace qt
