// MP3 files as parameters: those whose tags are read and written.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>
#include <string>

namespace corvane {

/// A sound that is no MP3 file.
inline constexpr std::int32_t kNotAnMp3 = -208;

struct Mp3File {
    std::int32_t code = 0;
    std::u16string path; ///< native
};

/// The file behind the sound of a parameter, if its name ends in "mp3". Other codes: those of
/// OpenSoundParameter and MovieFileOf.
Mp3File Mp3FileOf(const FM_DataVect& parameters, std::int32_t index);

} // namespace corvane
