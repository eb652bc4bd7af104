// Segments of tracks: inserting, cutting out, joining.

#include "platform/quicktime/movies/movie_model.h"

#include <algorithm>
#include <unordered_map>

namespace qt {
namespace {

TimeValue ToMedia(const TrackRecord& track, TimeValue movie_time) {
    return Scale(movie_time, track.media->time_scale, track.movie->time_scale);
}

/// The part of a segment inside [begin, end), where that is not empty. What the segment covers whole keeps
/// its exact media duration.
bool Cut(const TrackRecord& track, const Segment& segment, TimeValue begin, TimeValue end, Segment& part) {
    part = segment;
    part.start = std::max(segment.start, begin);
    part.duration = std::min(segment.End(), end) - part.start;
    if (part.duration <= 0) return false;
    const TimeValue skipped = std::min(ToMedia(track, part.start - segment.start), segment.media_duration);
    part.media_start += skipped;
    part.media_duration -= skipped;
    if (part.End() < segment.End())
        part.media_duration = std::min(part.media_duration, ToMedia(track, part.duration));
    return part.media_duration > 0;
}

/// Keeps what lies outside [begin, end); what lies behind moves by `shift`.
void Remove(TrackRecord& track, TimeValue begin, TimeValue end, TimeValue shift) {
    std::vector<Segment> kept;
    for (const Segment& segment : track.segments) {
        Segment part;
        if (Cut(track, segment, 0, begin, part)) kept.push_back(part);
        if (Cut(track, segment, end, std::max(end, segment.End()), part)) {
            part.start += shift;
            kept.push_back(part);
        }
    }
    track.segments = std::move(kept);
}

void Insert(TrackRecord& track, const Segment& segment) {
    const auto behind = std::find_if(track.segments.begin(), track.segments.end(),
                                     [&](const Segment& other) { return other.start >= segment.start; });
    track.segments.insert(behind, segment);
}

/// A track of `movie` with the settings of another movie's track, and a media over the same samples.
TrackRecord& CopyTrack(const TrackRecord& from, MovieRecord& movie) {
    TrackRecord& track = AddTrack(movie);
    track.width = from.width;
    track.height = from.height;
    track.volume = from.volume;
    track.enabled = from.enabled;
    track.created = from.created;
    if (from.media != nullptr) {
        track.media = std::make_unique<MediaRecord>(*from.media);
        track.media->track = &track;
        track.media->editing = false;
    }
    return track;
}

/// Copies all tracks, with the references among them, then each one's segments through `place`.
template <class Place>
void CopyTracks(const MovieRecord& from, MovieRecord& to, Place&& place) {
    std::unordered_map<const TrackRecord*, TrackRecord*> copies;
    const std::size_t count = from.tracks.size(); // a movie may be pasted into itself
    for (std::size_t i = 0; i < count; ++i) {
        TrackRecord& copy = CopyTrack(*from.tracks[i], to);
        copies[from.tracks[i].get()] = &copy;
        place(*from.tracks[i], copy);
    }
    for (const auto& [original, copy] : copies)
        for (const TrackLink& link : original->references)
            if (const auto found = copies.find(link.track); found != copies.end())
                copy->references.push_back({link.type, found->second});
}

} // namespace
} // namespace qt

TimeValue TrackTimeToMediaTime(TimeValue movie_time, Track track) {
    for (const qt::Segment& segment : track->segments) {
        if (movie_time < segment.start || movie_time >= segment.End()) continue;
        return segment.media_start + qt::ToMedia(*track, movie_time - segment.start);
    }
    return -1;
}

OSErr InsertMediaIntoTrack(Track track, TimeValue track_time, TimeValue media_time, TimeValue duration,
                           Fixed rate) {
    using namespace qt;
    if (track == nullptr) return MoviesError(invalidTrack);
    if (track->media == nullptr) return MoviesError(invalidMedia);
    if (rate <= 0 || media_time < 0) return MoviesError(invalidTime);
    if (duration < 0 || duration > track->media->samples->duration - media_time)
        return MoviesError(invalidDuration);
    Segment segment;
    segment.start = track_time >= 0 ? track_time : GetTrackDuration(track);
    segment.media_start = media_time;
    segment.media_duration = duration;
    const TimeValue at_normal_rate = Scale(duration, track->movie->time_scale, track->media->time_scale);
    segment.duration = Scale(at_normal_rate, kNormalRate, rate);
    if (duration == 0) return MoviesError(noErr);
    segment.duration = std::max<TimeValue>(segment.duration, 1);
    Remove(*track, segment.start, segment.End(), 0);
    Insert(*track, segment);
    return MoviesError(noErr);
}

OSErr SetMovieSelection(Movie movie, TimeValue start, TimeValue duration) {
    if (movie == nullptr) return qt::MoviesError(invalidMovie);
    if (duration < 0) return qt::MoviesError(invalidDuration);
    if (start < 0) return qt::MoviesError(invalidTime);
    const TimeValue end = GetMovieDuration(movie);
    movie->selection_start = std::min(start, end);
    movie->selection_duration = std::min(duration, end - movie->selection_start);
    return qt::MoviesError(noErr);
}

void GetMovieSelection(Movie movie, TimeValue* start, TimeValue* duration) {
    *start = movie->selection_start;
    *duration = movie->selection_duration;
}

Movie CopyMovieSelection(Movie movie) {
    using namespace qt;
    const OSErr code = movie == nullptr                 ? invalidMovie
                       : movie->selection_duration <= 0 ? invalidDuration
                                                        : noErr;
    MoviesError(code);
    if (code != noErr) return nullptr;
    const TimeValue begin = movie->selection_start;
    const TimeValue end = begin + movie->selection_duration;
    OwnedMovie copy(NewMovie(0));
    copy->time_scale = movie->time_scale;
    copy->volume = movie->volume;
    copy->preferred_rate = movie->preferred_rate;
    copy->balance = movie->balance;
    copy->play_hints = movie->play_hints;
    CopyTracks(*movie, *copy, [&](const TrackRecord& from, TrackRecord& to) {
        for (const Segment& segment : from.segments) {
            Segment part;
            if (!Cut(from, segment, begin, end, part)) continue;
            part.start -= begin;
            to.segments.push_back(part);
        }
    });
    return copy.release();
}

OSErr PasteMovieSelection(Movie movie, Movie source) {
    using namespace qt;
    if (movie == nullptr || source == nullptr) return MoviesError(invalidMovie);
    const TimeValue start = movie->selection_start;
    const TimeValue length = Scale(GetMovieDuration(source), movie->time_scale, source->time_scale);
    const TimeScale from_scale = source->time_scale;
    const std::size_t own_tracks = movie->tracks.size();
    CopyTracks(*source, *movie, [&](const TrackRecord& from, TrackRecord& to) {
        for (Segment segment : from.segments) {
            const TimeValue end = Scale(segment.End(), movie->time_scale, from_scale);
            segment.start = Scale(segment.start, movie->time_scale, from_scale);
            segment.duration = std::max<TimeValue>(1, end - segment.start);
            segment.start += start;
            to.segments.push_back(segment);
        }
    });
    for (std::size_t i = 0; i < own_tracks; ++i) {
        Remove(*movie->tracks[i], start, start + movie->selection_duration,
               length - movie->selection_duration);
    }
    movie->selection_duration = length;
    return MoviesError(noErr);
}
