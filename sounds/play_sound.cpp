#include "sounds/functions.h"

#include "platform/quicktime/movies/media.h"
#include "platform/quicktime/movies/sound_description.h"
#include "platform/win32/keyboard.h"
#include "plugin/drawing_port.h"
#include "plugin/errors.h"
#include "plugin/functions.h"
#include "plugin/host_data.h"
#include "sounds/media_pool.h"
#include "sounds/sound_parameter.h"
#include "sounds/value_parameters.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace corvane {
namespace {

// Below this rate, 16.16 Hz, interpolation is worth its work.
constexpr std::uint32_t kLowRate = 0x2B77'45D2;

struct PlayParameters {
    bool in_background = false;
    Fixed start = 0;          ///< seconds
    std::optional<Fixed> end; ///< seconds; none: the sound's
    qt::OwnedMovie movie;
};

FM_Error ReadParameters(const FM_DataVect& parameters, PlayParameters& read, CVSError& error) {
    const std::int32_t count = Host(FM_DataVect_Size, &parameters);
    if (count < 1 || count > 4)
        return error.Fail(kErrorWrongParameter, "This function requires 1 to 4 parameters.");
    if (count > 1) read.in_background = ReadBooleanParameter(parameters, 1).value;
    if (count > 2) {
        const Read<FadeTime> start = ReadTimeParameter(parameters, 2, TimeSign::kRefused);
        if (start.code != 0) return error.Fail(start.code, "Could not get parameter #3 as time.");
        read.start = start.value.seconds;
    }
    if (count > 3) {
        const Read<FadeTime> end = ReadTimeParameter(parameters, 3, TimeSign::kRefused);
        if (end.code != 0) return error.Fail(end.code, "Could not get parameter #4 as time.");
        read.end = end.value.seconds;
    }
    const std::int32_t code = OpenSoundParameter(parameters, 0, read.movie);
    if (code != 0) return error.Fail(code, "Could not get parameter #1 as sound.");
    if (read.movie == nullptr)
        return error.Fail(kErrorWrongParameter, "The container in argument #1 seems to be empty.");
    return kFM_ErrorNone;
}

// Only what can be heard plays.
void DisableVisibleTracks(Movie movie) {
    constexpr OSType kVisible = qt::Code("eyes");
    for (std::int32_t i = 1;; ++i) {
        const Track track = GetMovieIndTrackType(movie, i, kVisible, movieTrackCharacteristic);
        if (track == nullptr) return;
        SetTrackEnabled(track, false);
    }
}

TimeValue ToMovieTime(Movie movie, Fixed seconds) {
    const double units = seconds / 65536.0 * GetMovieTimeScale(movie);
    return std::clamp<TimeValue>(static_cast<TimeValue>(units), 0, GetMovieDuration(movie));
}

/// Replaces the movie by what is to play of it.
FM_Error SelectPart(PlayParameters& read, CVSError& error) {
    const Movie movie = read.movie.get();
    TimeValue start = ToMovieTime(movie, read.start);
    const bool to_end = !read.end || *read.end < 0;
    TimeValue end = to_end ? GetMovieDuration(movie) : ToMovieTime(movie, *read.end);
    if (end < start) std::swap(start, end);
    if (const OSErr code = SetMovieSelection(movie, start, end - start); code != noErr)
        return error.Fail(code, "Error setting sound selection.");
    qt::OwnedMovie part(CopyMovieSelection(movie));
    if (part == nullptr) return error.Fail(GetMoviesError(), "Error making sound selection.");
    read.movie = std::move(part);
    return kFM_ErrorNone;
}

bool HasLowRate(Movie movie) {
    const Track track =
        GetMovieIndTrackType(movie, 1, qt::Code("ears"), movieTrackCharacteristic | movieTrackEnabledOnly);
    const Media media = track != nullptr ? GetTrackMedia(track) : nullptr;
    const qt::MemoryHandle description(NewHandle(0));
    if (media == nullptr || GetMediaSampleDescription(media, 1, description.get()) != noErr) return false;
    const auto format = qt::ReadSoundFormat(qt::HandleBytes(description.get()));
    return format && format->rate * 65536 < kLowRate;
}

bool IsAbortPressed() {
    const auto is_down = [](int key) { return GetAsyncKeyState(key) < 0; };
    return is_down(VK_ESCAPE) || (is_down(VK_CONTROL) && is_down(VK_OEM_PERIOD));
}

OSErr PlayToTheEnd(Movie movie) {
    constexpr std::int32_t kTaskLength = 200; // ms
    MediaPool& pool = MediaPool::Instance();
    GoToBeginningOfMovie(movie);
    SetMovieActive(movie, true);
    SetMoviePreferredRate(movie, ToMovieRate(pool.GetTempo(kAllEntries)));
    SetMovieAudioBalance(movie, pool.GetBalance(kAllEntries));
    StartMovie(movie);
    OSErr code = GetMoviesError();
    while (code == noErr && GetMovieRate(movie) != 0) { // at a tempo of 0 it would never be done
        MoviesTask(movie, kTaskLength);
        code = GetMoviesError();
        if (!IsAbortPressed()) continue;
        win32::FlushInput();
        code = OSErr{kErrorUserCancelled};
    }
    StopMovie(movie);
    return code;
}

FM_Error Play(const FM_DataVect& parameters, CVSError& error) {
    PlayParameters read;
    if (const FM_Error failed = ReadParameters(parameters, read, error)) return failed;
    DisableVisibleTracks(read.movie.get());
    if (const FM_Error failed = SelectPart(read, error)) return failed;
    const Movie movie = read.movie.get();
    MediaPool& pool = MediaPool::Instance();
    SetMovieVolume(movie, ToMovieVolume(pool.GetVolume(kAllEntries)));
    const std::uint32_t interpolate = HasLowRate(movie) ? hintsUseSoundInterp : 0;
    SetMoviePlayHints(movie, hintsInactive | interpolate, hintsInactive | hintsUseSoundInterp);
    const OSErr code = read.in_background ? pool.Add(std::move(read.movie)) : PlayToTheEnd(movie);
    if (code != noErr)
        return error.Fail(code, read.in_background ? "Error adding sound to the asynchronous pool."
                                                   : "Error playing sound.");
    error.SetCode(0);
    return kFM_ErrorNone;
}

} // namespace

FM_Error PlaySound(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_PlaySound");
    const qt::CurrentPort port(DrawingPort());
    Play(parameters, error);
    const FM_Error set = SetLastErrorResult(result);
    return error.IsCode(0) ? set : error.HostCode();
}

} // namespace corvane
