// Movie files whole: structure, sample tables, aliases, descriptions; then their first samples, and the sound
// where no decoder is needed for it.
#include "fuzz/fuzz_target.h"
#include "fuzz/use_media.h"
#include "platform/quicktime/movies/movie_atoms.h"
#include "platform/quicktime/movies/reference_movies.h"

void Fuzz(std::string_view input) {
    const std::shared_ptr<qt::DataSource> source = qt::MemorySource(std::as_bytes(std::span(input)));
    const qt::DataReference reference = qt::MemoryReference();
    const qt::ReadMovie read = qt::ReadMovieFile(source, reference, "/nowhere/movie.mov");
    if (read.movie == nullptr) return;
    qt::FirstText(read.movie.get());
    GetMovieDuration(read.movie.get());
    for (std::int32_t i = 1; i <= GetMovieTrackCount(read.movie.get()); ++i)
        if (const Media media = GetTrackMedia(GetMovieIndTrack(read.movie.get(), i)); media != nullptr)
            UseMedia(media);
    SetMovieSelection(read.movie.get(), 1, GetMovieDuration(read.movie.get()) / 2);
    const qt::OwnedMovie part(CopyMovieSelection(read.movie.get()));
    if (part != nullptr) PasteMovieSelection(read.movie.get(), part.get());
}
