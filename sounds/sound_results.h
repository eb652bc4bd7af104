// The ways in which sound functions hand back a sound.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"
#include "platform/quicktime/movies/movies.h"
#include "plugin/errors.h"

#include <cstdint>
#include <string_view>

namespace corvane {

/// Makes the reference text of the movie's file the result, or that of a reference movie beside it when media
/// are to be linked so. Codes of MovieFileOf, MakeReferenceMovie and PutFileReferenceResult.
std::int32_t PutMovieResult(FM_Data& result, Movie movie);

/// Makes a container with the movie's first sound as a sound resource the result: 8-bit, mono, 44,100 Hz.
/// -2009 for a movie without sound.
std::int32_t PutSoundResourceResult(FM_Data& result, Movie movie);

/// What the last-error record says for the steps of PutWaveResult.
struct WaveResultMessages {
    std::string_view no_file;
    std::string_view not_exported;
    std::string_view not_opened;
    std::string_view no_result;
};

/// Writes a movie as a WAVE file into the temporary folder, where it stays, and makes that the result. The
/// record takes the code, and the message of the step that failed; answers the code.
FM_Error PutWaveResult(FM_Data& result, qt::OwnedMovie movie, const WaveResultMessages& messages,
                       CVSError& error);

} // namespace corvane
