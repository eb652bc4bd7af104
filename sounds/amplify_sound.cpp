#include "sounds/amplify_sound.h"

#include "files/data_reference.h"
#include "platform/quicktime/movies/media.h"
#include "platform/quicktime/movies/movie_files.h"
#include "sounds/amplify_samples.h"
#include "sounds/sample_block.h"
#include "sounds/sample_format.h"
#include "sounds/sound_results.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace corvane {
namespace {

constexpr std::int32_t kNoSuchTrack = -2030;
constexpr std::string_view kFailed = "Could not amplify sound.";

// A block that stays in the processor's cache between being read, amplified and written.
constexpr std::int64_t kBlockFrames = 1 << 15;

// Walks the samples of a media that are amplified: all of mono and stereo sounds. Of a sound of more channels
// as many as it has frames are, the others only come along.
template <class Work>
std::int32_t ForEachBlock(Media media, SampleBlock& block, Work&& work) {
    const TimeValue frames = GetMediaDuration(media);
    std::optional<std::uint64_t> left;
    for (TimeValue at = 0; at < frames; at += block.Frames()) {
        if (const std::int32_t code = block.Read(media, at, std::min(kBlockFrames, frames - at)); code != 0)
            return code;
        if (!left) left = static_cast<std::uint64_t>(frames) * (block.Channels() == 2 ? 2 : 1);
        const auto samples = std::min<std::uint64_t>(*left, block.Samples().size() / kSixteenBitBytes);
        if (const std::int32_t code = work(static_cast<std::size_t>(samples)); code != 0) return code;
        *left -= samples;
    }
    return 0;
}

std::int32_t FindFactor(Media media, SampleBlock& block, float& factor) {
    std::int16_t peak = 0;
    const std::int32_t code = ForEachBlock(media, block, [&](std::size_t samples) {
        const auto order = SixteenBitOrder(block.Format());
        if (!order) return RefusalOfFormat(block.Format());
        peak = std::max(peak, FindPeak(block.Samples().first(samples * kSixteenBitBytes), *order));
        return 0;
    });
    factor = NormalisingFactor(peak);
    return code;
}

std::int32_t AddAmplified(Media input, Media output, float factor, float limit) {
    SampleBlock block;
    if (limit == kNormaliseLimit) {
        if (const std::int32_t code = FindFactor(input, block, factor); code != 0) return code;
        limit = 1.0F;
    }
    return ForEachBlock(input, block, [&](std::size_t samples) {
        const std::int32_t code = AmplifyBlock(block.Samples(), block.Format(), 1, samples, factor, limit);
        return code == 0 ? block.AddTo(output, block) : code;
    });
}

// Makes the amplified sound of `source` as a movie in a file of its own.
std::int32_t MakeAmplifiedMovie(Movie source, float factor, float limit, const XFileSpec& file,
                                qt::OwnedMovie& amplified) {
    qt::DataReference reference;
    if (const std::int32_t code = DataReferenceOf(file, reference); code != 0) return code;
    DataHandler handler = nullptr;
    Movie movie = nullptr;
    OSErr code =
        CreateMovieStorage(reference.handle.get(), reference.type, kMoviePlayer, -1,
                           createMovieFileDeleteCurFile | createMovieFileDontCreateResFile, &handler, &movie);
    const qt::OwnedStorage storage(handler);
    amplified.reset(movie);
    if (code != noErr) return code;

    constexpr OSType kSound = qt::Code("soun");
    const Track source_track = GetMovieIndTrackType(source, 1, kSound, movieTrackMediaType);
    if (source_track == nullptr) return GetMoviesError() != noErr ? GetMoviesError() : kNoSuchTrack;
    const Media input = GetTrackMedia(source_track);
    const Track track = NewMovieTrack(movie, 0, 0, kFullVolume);
    const Media output = NewTrackMedia(track, kSound, GetMediaTimeScale(input), nullptr, 0);
    if (output == nullptr) return GetMoviesError();
    code = BeginMediaEdits(output);
    if (code != noErr) return code;
    if (const std::int32_t added = AddAmplified(input, output, factor, limit); added != 0) return added;
    code = EndMediaEdits(output);
    if (code == noErr) code = InsertMediaIntoTrack(track, 0, 0, GetMediaDuration(output), kNormalRate);
    return code == noErr ? AddMovieToStorage(movie, handler) : code;
}

} // namespace

FM_Error AmplifySound(Sound sound, float factor, float limit, FM_Data& result, CVSError& error) {
    std::int32_t code = EnsureWaveSamples(sound, AcceptedSamples::kAnyPcm);
    if (code != 0) return error.Fail(code, "Could not convert sound.");
    Sound amplified;
    code = amplified.intermediate.TakeName(".mov");
    if (code == 0)
        code = MakeAmplifiedMovie(sound.movie.get(), factor, limit, *amplified.intermediate, amplified.movie);
    if (code != 0) return error.Fail(code, kFailed);
    return PutWaveResult(result, std::move(amplified.movie),
                         {kFailed, kFailed, kFailed, "Could not set QuickTime container."}, error);
}

} // namespace corvane
