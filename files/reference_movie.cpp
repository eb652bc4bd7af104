#include "files/reference_movie.h"

#include "files/data_reference.h"
#include "files/intermediate_file.h"
#include "files/movie_file.h"
#include "files/temporary_files.h"
#include "platform/quicktime/movies/movie_files.h"
#include "platform/quicktime/movies/reference_movies.h"

#include <algorithm>
#include <string_view>

namespace corvane {
namespace {

constexpr std::string_view kNameEnd = "_ref.mov";

std::int32_t WriteReferenceMovie(Movie source, const XFileSpec& file) {
    qt::DataReference reference;
    if (const std::int32_t code = DataReferenceOf(file, reference); code != 0) return code;
    DataHandler storage = nullptr;
    Movie created = nullptr;
    const OSErr code = CreateMovieStorage(reference.handle.get(), reference.type, kMoviePlayer, 0,
                                          createMovieFileDontCreateResFile, &storage, &created);
    const qt::OwnedStorage owned_storage(storage);
    const qt::OwnedMovie movie(created);
    if (code != noErr) return code;
    if (const OSErr added = qt::AddReferenceTracks(source, created); added != noErr) return added;
    return AddMovieToStorage(created, storage);
}

} // namespace

ReferenceMovie MakeReferenceMovie(XFileSpec& movie_file) {
    XFileSpec folder;
    if (const std::int32_t code = GetWritableParent(movie_file, folder); code != 0) return {code};
    qt::OwnedMovie source;
    if (const std::int32_t code = OpenMovieFile(movie_file, source); code != 0) return {code};

    XFileSpec reference_movie = movie_file;
    reference_movie.name.erase(std::min(reference_movie.name.rfind('.'), reference_movie.name.size()));
    reference_movie.name += kNameEnd;
    const bool replaced = reference_movie.CheckExists() == 0;
    if (replaced) {
        if (const std::int32_t code = DeleteFileOf(reference_movie); code != 0) return {code};
    }
    IntermediateFile unfinished(reference_movie);
    if (const std::int32_t code = WriteReferenceMovie(source.get(), reference_movie); code != 0)
        return {code};
    movie_file = reference_movie;
    unfinished.Keep();
    return {0, replaced};
}

} // namespace corvane
