#include "sounds/extract_span.h"

#include "sounds/sound_track.h"

namespace corvane {
namespace {

// Movie units of a span of seconds. The seconds are in single precision; the product isn't, which would have
// too few digits for the frames of a longer sound.
TimeValue ToUnits(std::int64_t seconds, TimeScale scale) {
    return static_cast<TimeValue>(double{static_cast<float>(seconds)} / 65536 * scale);
}

} // namespace

std::int32_t ExtractSpan(Movie movie, std::int64_t begin, std::int64_t end, qt::OwnedMovie& extract) {
    const SoundTrack sound = FirstSoundTrack(movie);
    if (sound.code != 0) return sound.code;
    const TimeScale scale = GetMovieTimeScale(movie);
    const TimeValue length = ToUnits(end - begin, scale);
    if (const OSErr code = SetMovieSelection(movie, ToUnits(begin, scale), length); code != noErr)
        return code;
    extract.reset(CopyMovieSelection(movie));
    return extract != nullptr ? noErr : GetMoviesError();
}

} // namespace corvane
