// Movie files whole: structure, sample tables, aliases, descriptions; then their first samples, their sound,
// and what they become when they are edited and written.
#include "fuzz/fuzz_target.h"
#include "fuzz/use_media.h"
#include "platform/quicktime/movies/movie_atoms.h"
#include "platform/quicktime/movies/movie_writer.h"
#include "platform/quicktime/movies/reference_movies.h"
#include "tests/support/files.h"

namespace {

/// Whether the samples are few enough to be copied every time: tables may name the same bytes often.
bool HasFewSamples(const qt::MovieRecord& movie) {
    constexpr std::uint64_t kMost = 1U << 16;
    std::uint64_t bytes = 0;
    for (const auto& track : movie.tracks) {
        if (track->media == nullptr || track->media->samples->LoadRuns() != noErr) continue;
        for (const qt::SampleRun& run : track->media->samples->runs) {
            if (run.size > kMost || run.count > kMost) return false;
            bytes += run.count * run.size;
        }
    }
    return bytes <= kMost;
}

/// A movie that can be written is the same one when it is read again.
void Write(const qt::MovieRecord& movie) {
    static const corvane::test::ScratchFolder folder;
    const std::string path = folder.Path() + "/movie.mov";
    qt::StorageFile file;
    Require(file.Create(path, true) == noErr);
    if (qt::WriteMovie(movie, file, qt::ForeignSamples::kCopy) != noErr) return;
    const std::shared_ptr<qt::DataSource> written = qt::OpenFileSource(path).source;
    const qt::ReadMovie again = qt::ReadMovieFile(written, qt::MemoryReference(), path);
    Require(again.movie != nullptr);
}

} // namespace

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
    if (HasFewSamples(*read.movie)) Write(*read.movie);
    if (part != nullptr) PasteMovieSelection(read.movie.get(), part.get());
}
