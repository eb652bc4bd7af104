// Reading the structure of movie files: QuickTime movies, and MPEG-4 files, which have the same.
#pragma once

#include "platform/quicktime/movies/movie_files.h"
#include "platform/quicktime/movies/movie_model.h"

namespace qt {

/// A movie, or why there is none.
struct ReadMovie {
    OSErr code = noErr;
    OwnedMovie movie;
    bool fragmented = false; ///< its samples are not all described in one place: for a demultiplexer
};

/// Reads the movie of a file. `reference` is the file's, and becomes the movie's default data reference;
/// `path` is its Unix path, empty for data that is no file: then references to other files stay unresolved.
/// Those are sought from the movie's folder first, so that movies and their sources can move together, then
/// at their full path.
ReadMovie ReadMovieFile(const std::shared_ptr<DataSource>& data, const DataReference& reference,
                        const std::string& path);

} // namespace qt
