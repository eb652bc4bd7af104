// Bringing sounds into samples that the sound functions can work on: the intermediate WAVE file of 16-bit
// stereo samples at 44,100 Hz.
#pragma once

#include "files/file_spec.h"
#include "files/intermediate_file.h"
#include "platform/quicktime/movies/movies.h"

#include <cstdint>

namespace corvane {

/// Writes the whole sound of a movie as an intermediate WAVE, in place of a file that is there. -1 without an
/// exporter, else the media layer's code; a failure leaves no file.
std::int32_t ExportIntermediateWave(Movie movie, const XFileSpec& file);

/// A movie, and the intermediate file that it was converted into, if it was: the file goes when the sound
/// does.
struct Sound {
    IntermediateFile intermediate;
    qt::OwnedMovie movie;
};

enum class AcceptedSamples : std::uint8_t {
    kLittleEndian, ///< 'sowt' alone
    kAnyPcm        ///< 'raw ', 'twos' and 'sowt'
};

/// Converts a sound whose first sound track has other samples; codes of FirstSoundTrack and of the
/// conversion.
std::int32_t EnsureWaveSamples(Sound& sound, AcceptedSamples accepted);

} // namespace corvane
