#include "sounds/functions.h"

#include "plugin/errors.h"
#include "plugin/host_data.h"
#include "sounds/extract_span.h"
#include "sounds/sample_block.h"
#include "sounds/sound_parameter.h"
#include "sounds/value_parameters.h"
#include "sounds/wave_samples.h"
#include "sounds/waveform_drawing.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

namespace corvane {
namespace {

constexpr std::int32_t kNoSuchTrack = -2030;
constexpr std::int32_t kStartsBehindEnd = -5246;
constexpr double kUnitsPerSecond = 65536;
constexpr Fixed kLeadIn = 6553;  // 0.1 s
constexpr Fixed kAround = 13107; // lead-in and lead-out

// A block that stays in the processor's cache until it is drawn.
constexpr std::int64_t kBlockFrames = 1 << 15;

// The span of a sound, in seconds; an end of 0 is that of the track.
struct DrawnSpan {
    float start = 0;
    float end = 0;
};

// The frames of a media that are drawn.
struct DrawnFrames {
    Media media = nullptr;
    TimeValue first = 0;
    std::int64_t count = 0;
};

// Cuts out the part from `start` to `end`, with a little of what is around it.
std::int32_t CutOut(qt::OwnedMovie& movie, Fixed start, Fixed end, DrawnSpan& span) {
    const bool lead_in = start > kLeadIn;
    const std::int64_t begin = lead_in ? start - kLeadIn : start;
    const std::int64_t length = std::int64_t{end} - start;
    qt::OwnedMovie extract;
    const std::int32_t code = ExtractSpan(movie.get(), begin, begin + length + kAround, extract);
    if (code != 0) return code;
    movie = std::move(extract);
    span.start = lead_in ? 0.1F : 0.0F;
    span.end = span.start + static_cast<float>(static_cast<double>(length) / kUnitsPerSecond);
    return 0;
}

std::int32_t FindFrames(Movie movie, std::uint32_t track_number, DrawnSpan span, DrawnFrames& frames) {
    const auto index = static_cast<std::int32_t>(
        std::min<std::uint32_t>(track_number, std::numeric_limits<std::int32_t>::max()));
    const Track track = GetMovieIndTrackType(movie, index, qt::Code("soun"), movieTrackMediaType);
    if (track == nullptr) return GetMoviesError() != noErr ? GetMoviesError() : kNoSuchTrack;
    frames.media = GetTrackMedia(track);

    const auto duration = static_cast<double>(GetTrackDuration(track));
    const auto scale = static_cast<double>(GetMovieTimeScale(movie));
    if (duration < scale * span.start) return kStartsBehindEnd;
    const auto rate = static_cast<double>(GetMediaTimeScale(frames.media));
    const double skipped = std::trunc(rate * span.start);
    // The end of the track in seconds would be rounded, half the time to before the last frame.
    const bool to_end = span.end == 0 || duration < scale * span.end;
    const auto count = static_cast<std::int64_t>(to_end ? duration * rate / scale - skipped
                                                        : (span.end - span.start) * rate);
    // The media of a part that was cut out is still the whole one.
    frames.first = std::max<TimeValue>(TrackTimeToMediaTime(0, track), 0) + static_cast<TimeValue>(skipped);
    frames.count = std::min(count, GetMediaDuration(frames.media) - frames.first);
    return 0;
}

// Hands the frames to the drawing, and sets their number to how many there were: fewer in a file that was cut
// short, and where samples of another form begin.
std::int32_t DrawFrames(DrawnFrames& frames, const WaveformRequest& request, WaveformDrawing& drawing) {
    SampleBlock block;
    const auto read_at = [&](std::int64_t done) {
        return block.Read(frames.media, frames.first + done, std::min(kBlockFrames, frames.count - done));
    };
    std::int32_t code = read_at(0);
    if (code != 0) return code;
    const OSType format = block.Format();
    const std::uint32_t channels = block.Channels();
    code = drawing.Begin(request, {format, channels, static_cast<std::uint64_t>(frames.count)});
    if (code != 0) return code;
    std::int64_t done = 0;
    do {
        drawing.AddFrames(block.Samples());
        done += block.Frames();
    } while (done < frames.count && read_at(done) == 0 && block.Format() == format &&
             block.Channels() == channels);
    frames.count = done;
    return 0;
}

std::int32_t Draw(Movie movie, std::uint32_t track, DrawnSpan span, const WaveformRequest& request,
                  PixelBufferHandle& picture) {
    DrawnFrames frames;
    std::int32_t code = FindFrames(movie, track, span, frames);
    if (code != 0) return code;
    // The width is shared out among the frames that there are: they are drawn anew when they turn out fewer.
    std::int64_t expected = 0;
    do {
        expected = frames.count;
        WaveformDrawing drawing;
        code = DrawFrames(frames, request, drawing);
        if (code != 0) return code;
        picture = drawing.TakePicture();
    } while (expected != frames.count);
    return 0;
}

FM_Error ReadColors(const FM_DataVect& parameters, WaveformRequest& request, CVSError& error) {
    const std::int32_t count = Host(FM_DataVect_Size, &parameters);
    if (count > 6) {
        const Read<RgbColor> color = ReadHtmlColorParameter(parameters, 6);
        if (color.code != 0) return error.Fail(color.code, "Could not get parameter #7 as HTML color.");
        request.foreground = color.value;
    }
    if (count > 7) {
        const Read<RgbColor> color = ReadHtmlColorParameter(parameters, 7);
        if (color.code != 0) return error.Fail(color.code, "Could not get parameter #8 as HTML color.");
        request.background = color.value;
    }
    return kFM_ErrorNone;
}

// Times that overflowed count as 0. Without the parameter the time is 0.
Read<Fixed> ReadBound(const FM_DataVect& parameters, std::int32_t index) {
    if (index >= Host(FM_DataVect_Size, &parameters)) return {};
    const Read<FadeTime> time = ReadTimeParameter(parameters, index, TimeSign::kRefused);
    return {time.code, std::max(time.value.seconds, Fixed{0})};
}

FM_Error DrawParameters(const FM_DataVect& parameters, FM_Data& result, CVSError& error) {
    if (Host(FM_DataVect_Size, &parameters) < 4)
        return error.Fail(kErrorWrongParameter, "This function requires at least 4 parameters.");
    Sound sound;
    std::int32_t code = OpenSoundParameter(parameters, 0, sound.movie);
    if (code != 0) return error.Fail(code, "Could not get parameter #1 as movie.");
    const Read<std::string> track_text = ReadTextParameter(parameters, 1);
    if (track_text.code != 0) return error.Fail(track_text.code, "Could not get parameter #2 as text.");
    const std::optional<TrackChannel> track = ParseTrackChannel(track_text.value);
    if (!track) return error.Fail(kErrorWrongParameter, "Invalid track/channel specified in parameter #2.");
    const Read<std::int32_t> width = ReadLongParameter(parameters, 2);
    if (width.code != 0) return error.Fail(width.code, "Could not get parameter #3 as number.");
    const Read<std::int32_t> height = ReadLongParameter(parameters, 3);
    if (height.code != 0) return error.Fail(height.code, "Could not get parameter #4 as number.");
    const Read<Fixed> from = ReadBound(parameters, 4);
    if (from.code != 0) return error.Fail(from.code, "Could not get parameter #5 as time.");
    const Read<Fixed> to = ReadBound(parameters, 5);
    if (to.code != 0) return error.Fail(to.code, "Could not get parameter #6 as time.");
    const auto [start, end] = std::minmax(from.value, to.value);
    WaveformRequest request;
    request.width = width.value;
    request.height = height.value;
    request.channel = track->channel;
    if (const FM_Error failed = ReadColors(parameters, request, error); failed != kFM_ErrorNone)
        return failed;

    DrawnSpan span;
    if (end != 0) {
        code = CutOut(sound.movie, start, end, span);
        if (code != 0) return error.Fail(code, "Could not extract movie selection.");
    }
    code = EnsureWaveSamples(sound, AcceptedSamples::kAnyPcm);
    if (code != 0) return error.Fail(code, "Could not convert sound.");
    PixelBufferHandle picture;
    code = Draw(sound.movie.get(), track->track, span, request, picture);
    if (code != 0) return error.Fail(code, "Could not display waveform.");
    code = EncodePixelBufferAsJPEG(result, picture.get());
    if (code != 0) return error.Fail(code, "Failed to put picture into container.");
    error.SetCode(0);
    return kFM_ErrorNone;
}

} // namespace

FM_Error DrawWaveform(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_DrawWaveform");
    ClearResult(result);
    DrawParameters(parameters, result, error);
    return kFM_ErrorNone;
}

} // namespace corvane
