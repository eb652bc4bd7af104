#include "sounds/file_format.h"

#include "platform/quicktime/movies/movie_files.h"
#include "sounds/sound_track.h"

namespace corvane {

FileFormat FileFormatOf(Movie movie) {
    qt::DataReference reference;
    if (const std::int32_t code = SoundReference(movie, reference); code != 0) return {code, 0};
    if (reference.type != qt::kAliasDataHandler) return {0, qt::Code("sfil")};
    FileFormat found;
    found.code = GetMovieImporterForDataRef(reference.type, reference.handle.get(), &found.format);
    return found;
}

} // namespace corvane
