#include "sounds/functions.h"

#include "files/data_reference.h"
#include "platform/quicktime/movies/movie_files.h"
#include "plugin/drawing_port.h"
#include "plugin/host_data.h"
#include "sounds/mix_samples.h"
#include "sounds/sample_block.h"
#include "sounds/sample_format.h"
#include "sounds/sound_parameter.h"
#include "sounds/sound_results.h"
#include "sounds/sound_track.h"
#include "sounds/wave_samples.h"

#include <algorithm>
#include <string_view>

namespace corvane {
namespace {

constexpr OSType kSound = qt::Code("soun");
constexpr std::int64_t kBlockFrames = 44100;
constexpr std::string_view kFailed = "Could not mix sounds.";

// The frames that both have, averaged; then those that only the longer one has.
std::int32_t AddMixed(Media first, Media second, Media output) {
    const TimeValue first_frames = GetMediaDuration(first);
    const TimeValue second_frames = GetMediaDuration(second);
    const TimeValue common = std::min(first_frames, second_frames);
    SampleBlock block1;
    SampleBlock block2;
    TimeValue at = 0;
    for (; at < common; at += block2.Frames()) {
        const std::int64_t count = std::min(kBlockFrames, common - at);
        if (const std::int32_t code = block1.Read(first, at, count); code != 0) return code;
        if (const std::int32_t code = block2.Read(second, at, count); code != 0) return code;
        if (block1.Frames() != block2.Frames()) return kErrorUnknown;
        const std::int32_t mixed =
            MixSamples(block1.Samples(), block2.Samples(), block1.Format(), block1.Channels());
        if (mixed != 0) return mixed;
        if (const std::int32_t code = block2.AddTo(output, block2); code != 0) return code;
    }
    const Media longer = first_frames > second_frames ? first : second;
    for (const TimeValue end = std::max(first_frames, second_frames); at < end; at += block1.Frames()) {
        const std::int32_t code = block1.Read(longer, at, std::min(kBlockFrames, end - at));
        if (code != 0) return code;
        if (block1.Format() != kSowtFormat) return kErrorNotImplemented; // the description changed on the way
        const SampleBlock& like = block2.Frames() > 0 ? block2 : block1;
        if (const std::int32_t added = block1.AddTo(output, like); added != 0) return added;
    }
    return 0;
}

// An empty movie of one sound track in a file, to whose media samples can be added.
std::int32_t MakeEmptySoundMovie(const XFileSpec& file, TimeScale scale, qt::OwnedMovie& movie) {
    const qt::OwnedMovie empty(NewMovie(0));
    const Track track = NewMovieTrack(empty.get(), 0, 0, kFullVolume);
    if (NewTrackMedia(track, kSound, scale, nullptr, qt::kHandleDataHandler) == nullptr)
        return GetMoviesError();
    qt::DataReference reference;
    if (const std::int32_t code = DataReferenceOf(file, reference); code != 0) return code;
    movie.reset(FlattenMovieDataToDataRef(empty.get(), 0, reference.handle.get(), reference.type,
                                          kMoviePlayer, -1, createMovieFileDeleteCurFile));
    return movie != nullptr ? noErr : GetMoviesError();
}

// The mix plays at the pace of its samples, which are those of the second sound unless it is empty: frames
// are mixed one to one, whatever their rates.
std::int32_t Mix(Sound& first, Sound& second, Sound& mixed) {
    for (Sound* sound : {&first, &second}) {
        const std::int32_t code = EnsureWaveSamples(*sound, AcceptedSamples::kLittleEndian);
        if (code != 0) return code;
    }
    const SoundTrack first_track = FirstSoundTrack(first.movie.get());
    const SoundTrack second_track = FirstSoundTrack(second.movie.get());
    if (first_track.code != 0 || second_track.code != 0)
        return first_track.code != 0 ? first_track.code : second_track.code;
    std::int32_t code = mixed.intermediate.TakeName(".mov");
    if (code != 0) return code;
    const Media paced = GetMediaDuration(second_track.media) > 0 ? second_track.media : first_track.media;
    code = MakeEmptySoundMovie(*mixed.intermediate, GetMediaTimeScale(paced), mixed.movie);
    if (code != 0) return code;
    const SoundTrack output = FirstSoundTrack(mixed.movie.get());
    if (output.code != 0) return output.code;
    code = BeginMediaEdits(output.media);
    if (code == 0) code = AddMixed(first_track.media, second_track.media, output.media);
    if (code == 0) code = EndMediaEdits(output.media);
    if (code != 0) return code;
    return InsertMediaIntoTrack(output.track, 0, 0, GetMediaDuration(output.media), kNormalRate);
}

FM_Error MixParameters(const FM_DataVect& parameters, FM_Data& result, CVSError& error) {
    if (Host(FM_DataVect_Size, &parameters) != 2)
        return error.Fail(kErrorWrongParameter, "This function requires exactly 2 parameters.");
    Sound first;
    std::int32_t code = OpenSoundParameter(parameters, 0, first.movie);
    if (code != 0) return error.Fail(code, "Could not get parameter #1 as sound.");
    Sound second;
    code = OpenSoundParameter(parameters, 1, second.movie);
    if (code != 0) return error.Fail(code, "Could not get parameter #2 as sound.");
    Sound mixed;
    code = Mix(first, second, mixed);
    if (code != 0) return error.Fail(code, kFailed);
    return PutWaveResult(result, std::move(mixed.movie), {kFailed, kFailed, kFailed, "Could not set result."},
                         error);
}

} // namespace

FM_Error MixSounds(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_MixSounds");
    const qt::CurrentPort port(DrawingPort());
    if (MixParameters(parameters, result, error) != kFM_ErrorNone) ClearResult(result);
    return kFM_ErrorNone;
}

} // namespace corvane
