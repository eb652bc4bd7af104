// Reference movies: small movie files whose sound lies in the file that they stand for.
#pragma once

#include "files/file_spec.h"

#include <cstdint>

namespace corvane {

struct ReferenceMovie {
    std::int32_t code = 0;
    bool replaced = false; ///< there was one before, which earlier results may refer to
};

/// Writes the reference movie of a movie or sound file beside it ("clip.wav" gives "clip_ref.mov"), in place
/// of one that is there, and makes `movie_file` the new file. -10000 when the folder can't be written to, a
/// code of deleting the old one, or of the media layer; then `movie_file` is as it was and no file is left.
ReferenceMovie MakeReferenceMovie(XFileSpec& movie_file);

} // namespace corvane
