#pragma once

#include "files/file_spec.h"
#include "platform/quicktime/movies/movies.h"

#include <cstdint>

namespace corvane {

/// Opens whatever the media layer reads as a movie; its code. The movie is null when that is not 0.
std::int32_t OpenMovieFile(const XFileSpec& file, qt::OwnedMovie& movie);

/// The same for a reference to a file, an address or memory.
std::int32_t OpenMovieReference(const qt::DataReference& reference, qt::OwnedMovie& movie);

} // namespace corvane
