// The structure of a movie file, written behind its samples.
#pragma once

#include "platform/quicktime/movies/movie_storage.h"

namespace qt {

/// What becomes of samples that lie in another file.
enum class ForeignSamples : std::uint8_t { kReferTo, kCopy };

/// Finishes the file with this movie. Samples in memory are always copied into it; sounds that only a library
/// decodes have no samples to copy or refer to: invalidSampleTable.
OSErr WriteMovie(const MovieRecord& movie, StorageFile& file, ForeignSamples foreign);

/// An alias record for the file `target`, kept in the file `movie`: the folders to go up and down between
/// them, and the full path. Both are absolute Unix paths.
Bytes MakeAlias(const std::string& target, const std::string& movie);

/// The paths that a record of either kind may mean, best first: from the movie's folder, then the full one.
std::vector<std::string> ReadAlias(std::span<const std::byte> alias, const std::string& movie);
std::vector<std::string> ReadUrl(std::span<const std::byte> url, const std::string& movie);

} // namespace qt
