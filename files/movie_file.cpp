#include "files/movie_file.h"

#include "files/data_reference.h"
#include "platform/quicktime/movies/movie_files.h"

namespace corvane {

std::int32_t OpenMovieReference(const qt::DataReference& reference, qt::OwnedMovie& movie) {
    Movie opened = nullptr;
    const OSErr code = NewMovieFromDataRef(&opened, reference.handle.get(), reference.type);
    movie.reset(opened);
    return code;
}

std::int32_t OpenMovieFile(const XFileSpec& file, qt::OwnedMovie& movie) {
    movie.reset();
    qt::DataReference reference;
    if (const std::int32_t code = DataReferenceOf(file, reference); code != 0) return code;
    return OpenMovieReference(reference, movie);
}

} // namespace corvane
