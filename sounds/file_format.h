#pragma once

#include "platform/quicktime/movies/movies.h"

#include <cstdint>

namespace corvane {

/// Code of a sound's file format: the subtype of the importer that reads it, 'WAVE' or 'M4A '; 'sfil' for a
/// sound that lies in no file.
struct FileFormat {
    std::int32_t code = 0;
    OSType format = 0;
};
FileFormat FileFormatOf(Movie movie);

} // namespace corvane
