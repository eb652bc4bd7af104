// Movie files whole: structure, sample tables, aliases, descriptions; then their first samples, and the sound
// where no decoder is needed for it.
#include "fuzz/fuzz_target.h"
#include "platform/quicktime/movies/movie_atoms.h"
#include "platform/quicktime/movies/reference_movies.h"
#include "platform/quicktime/movies/sound_description.h"
#include "platform/quicktime/movies/sound_renderer.h"

namespace {

void UseMedia(Media media) {
    const qt::MemoryHandle data(NewHandle(0));
    const qt::MemoryHandle description(NewHandle(0));
    std::int64_t samples = 0;
    GetMediaSample(media, 0, 1000, data.get(), description.get(), &samples);
    const bool uncompressed = qt::LayoutOf(qt::HandleBytes(description.get())).has_value();
    QTSoundDescriptionGetProperty(description.get(), qt::Code("sdes"), qt::Code("asbd"), data.get());
    QTSoundDescriptionConvertToV1(description.get(), data.get());
    if (!uncompressed || GetMediaType(media) != qt::Code("soun")) return;
    std::unique_ptr<qt::SoundRenderer> renderer;
    const qt::PcmLayout layout = {qt::SampleEncoding::kSigned16, false, 2,
                                  static_cast<std::uint32_t>(GetMediaTimeScale(media))}; // no resampler
    const Track track = GetMediaTrack(media);
    if (qt::SoundRenderer::Open(*GetTrackMovie(track), track, layout, renderer) != noErr) return;
    qt::Bytes block(1U << 16);
    for (int i = 0; i < 4 && renderer->Read(block).frames > 0; ++i) {
    }
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
    if (part != nullptr) PasteMovieSelection(read.movie.get(), part.get());
}
