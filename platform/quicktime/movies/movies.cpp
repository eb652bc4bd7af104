#include "platform/quicktime/movies/movie_model.h"

#include <algorithm>
#include <chrono>
#include <limits>

namespace {

OSErr g_movies_error = noErr;

bool SoundsOrShows(OSType media_type, OSType characteristic) {
    const bool sounds = media_type == qt::Code("soun") || media_type == qt::Code("MPEG");
    if (characteristic == qt::Code("ears")) return sounds;
    return characteristic == qt::Code("eyes") &&
           (media_type == qt::Code("vide") || media_type == qt::Code("text") ||
            media_type == qt::Code("MPEG"));
}

bool Matches(const qt::TrackRecord& track, OSType type, std::int32_t flags) {
    if ((flags & movieTrackEnabledOnly) != 0 && !track.enabled) return false;
    if (track.media == nullptr) return type == 0;
    if ((flags & movieTrackCharacteristic) != 0) return SoundsOrShows(track.media->type, type);
    return track.media->type == type;
}

} // namespace

namespace qt {

OSErr MoviesError(OSErr code) {
    g_movies_error = code;
    return code;
}

std::uint32_t MovieTimeFromUnix(std::int64_t seconds) {
    constexpr std::int64_t kUnixEpoch = 2'082'844'800; // 1 January 1970 in seconds since 1 January 1904
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(seconds + kUnixEpoch, 0, 0xFFFF'FFFF));
}

std::uint32_t CurrentMovieTime() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return MovieTimeFromUnix(std::chrono::duration_cast<std::chrono::seconds>(now).count());
}

TimeValue Scale(TimeValue value, std::int64_t numerator, std::int64_t denominator) {
    __extension__ using Wide = __int128;
    if (denominator <= 0) return 0;
    const Wide product = static_cast<Wide>(value) * numerator;
    const Wide half = denominator / 2;
    const Wide rounded = (product >= 0 ? product + half : product - half) / denominator;
    constexpr Wide kHighest = std::numeric_limits<TimeValue>::max() / 2; // so that sums of two don't overflow
    return static_cast<TimeValue>(std::clamp(rounded, -kHighest, kHighest));
}

TrackRecord& AddTrack(MovieRecord& movie) {
    auto& track = movie.tracks.emplace_back(std::make_unique<TrackRecord>());
    track->movie = &movie;
    track->created = track->modified = CurrentMovieTime();
    return *track;
}

void AdoptSoundTimeScale(MovieRecord& movie) {
    const auto sound = std::find_if(movie.tracks.begin(), movie.tracks.end(), [](const auto& track) {
        return track->media != nullptr && track->media->type == Code("soun");
    });
    if (sound == movie.tracks.end()) return;
    const TimeScale old_scale = movie.time_scale;
    movie.time_scale = (*sound)->media->time_scale;
    for (const auto& track : movie.tracks) {
        for (Segment& segment : track->segments) {
            const TimeValue end = Scale(segment.End(), movie.time_scale, old_scale);
            segment.start = Scale(segment.start, movie.time_scale, old_scale);
            segment.duration = end - segment.start;
            if (track->media == nullptr || track->media->type != Code("soun")) continue;
            const TimeScale media_scale = track->media->time_scale;
            const TimeValue unit = media_scale / old_scale + 1;
            const TimeValue left = track->media->samples->duration - segment.media_start;
            if (std::abs(segment.media_duration - left) <= unit) segment.media_duration = left;
            segment.duration = Scale(segment.media_duration, movie.time_scale, media_scale);
        }
    }
}

} // namespace qt

OSErr GetMoviesError() {
    return g_movies_error;
}

Movie NewMovie(std::int32_t) {
    auto movie = std::make_unique<qt::MovieRecord>();
    movie->created = movie->modified = qt::CurrentMovieTime();
    qt::MoviesError(noErr);
    return movie.release();
}

void DisposeMovie(Movie movie) {
    const std::unique_ptr<qt::MovieRecord> ended(movie);
}

TimeScale GetMovieTimeScale(Movie movie) {
    return movie->time_scale;
}

TimeValue GetMovieDuration(Movie movie) {
    TimeValue end = 0;
    for (const auto& track : movie->tracks) end = std::max(end, GetTrackDuration(track.get()));
    return end;
}

std::int32_t GetMovieTrackCount(Movie movie) {
    return static_cast<std::int32_t>(movie->tracks.size());
}

Track GetMovieIndTrack(Movie movie, std::int32_t index) {
    if (index < 1 || index > GetMovieTrackCount(movie)) return nullptr;
    return movie->tracks[static_cast<std::size_t>(index - 1)].get();
}

Track GetMovieIndTrackType(Movie movie, std::int32_t index, OSType type, std::int32_t flags) {
    qt::MoviesError(movie != nullptr ? noErr : invalidMovie);
    if (movie == nullptr) return nullptr;
    for (const auto& track : movie->tracks)
        if (Matches(*track, type, flags) && --index == 0) return track.get();
    return nullptr;
}

Track NewMovieTrack(Movie movie, Fixed width, Fixed height, std::int16_t volume) {
    if (qt::MoviesError(movie != nullptr ? noErr : invalidMovie) != noErr) return nullptr;
    qt::TrackRecord& track = qt::AddTrack(*movie);
    track.width = width;
    track.height = height;
    track.volume = volume;
    return &track;
}

void DisposeMovieTrack(Track track) {
    if (track == nullptr) return;
    auto& tracks = track->movie->tracks;
    for (const auto& other : tracks)
        std::erase_if(other->references, [&](const qt::TrackLink& link) { return link.track == track; });
    std::erase_if(tracks, [&](const auto& other) { return other.get() == track; });
}

Movie GetTrackMovie(Track track) {
    return track->movie;
}

Media GetTrackMedia(Track track) {
    qt::MoviesError(track == nullptr ? invalidTrack : track->media == nullptr ? invalidMedia : noErr);
    return track != nullptr ? track->media.get() : nullptr;
}

TimeValue GetTrackDuration(Track track) {
    return track->segments.empty() ? 0 : track->segments.back().End();
}

void SetTrackEnabled(Track track, bool enabled) {
    track->enabled = enabled;
}

std::int16_t GetTrackVolume(Track track) {
    return track->volume;
}

void SetTrackVolume(Track track, std::int16_t volume) {
    track->volume = volume;
}

void GetTrackDimensions(Track track, Fixed* width, Fixed* height) {
    *width = track->width;
    *height = track->height;
}

std::uint32_t GetTrackCreationTime(Track track) {
    return track->created;
}

std::uint32_t GetTrackModificationTime(Track track) {
    return track->modified;
}

OSErr AddTrackReference(Track track, Track other, OSType type, std::int32_t* index) {
    if (track == nullptr || other == nullptr || track->movie != other->movie)
        return qt::MoviesError(invalidTrack);
    track->references.push_back({type, other});
    *index = static_cast<std::int32_t>(
        std::count_if(track->references.begin(), track->references.end(),
                      [&](const qt::TrackLink& link) { return link.type == type; }));
    return qt::MoviesError(noErr);
}
