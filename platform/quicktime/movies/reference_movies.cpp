#include "platform/quicktime/movies/reference_movies.h"

#include "platform/quicktime/movies/media.h"
#include "platform/quicktime/movies/movie_model.h"

#include <algorithm>

namespace qt {
namespace {

constexpr Fixed kWidth = 320 << 16;
constexpr Fixed kHeight = 200 << 16;
constexpr std::int64_t kLongestText = 1 << 16;

/// Centred, black on white, in the system's font, in a box of 20 lines in the middle.
Bytes TextDescription() {
    AtomWriter writer;
    writer.Atom(Code("text"), [&] {
        writer.Zeros(6);
        writer.Put16(1); // data reference
        writer.Put32(0);
        writer.Put32(1); // centred
        for (int i = 0; i < 3; ++i) writer.Put16(0xFFFF);
        for (const int edge : {90, 0, 110, 320}) writer.Put16(static_cast<std::uint16_t>(edge));
        writer.Zeros(4);
        writer.Put16(15); // height, ascent
        writer.Put16(12);
        writer.Zeros(4);  // system font, plain
        writer.Put16(12); // points
        writer.Zeros(6);  // black
        writer.Put8(0);
    });
    return writer.Take();
}

OSErr AddTextTrack(Movie movie, TimeValue duration) {
    const Track track = NewMovieTrack(movie, kWidth, kHeight, 0);
    const Media media = NewTrackMedia(track, Code("text"), movie->time_scale, nullptr, 0);
    if (media == nullptr) return GetMoviesError();
    const Bytes bytes = TextDescription();
    Handle block = nullptr;
    if (const OSErr code = PtrToHand(bytes.data(), &block, static_cast<Size>(bytes.size())); code != noErr)
        return code;
    const MemoryHandle description(block);
    AtomWriter sample;
    sample.Put16(kPlaceholderText.size());
    sample.Put(kPlaceholderText);
    if (const OSErr code = BeginMediaEdits(media); code != noErr) return code;
    OSErr code = AddMediaSample(media, sample.Take(), duration, block, 1);
    if (code == noErr) code = EndMediaEdits(media);
    return code != noErr ? code : InsertMediaIntoTrack(track, 0, 0, duration, kNormalRate);
}

} // namespace

OSErr AddReferenceTracks(Movie source, Movie target) {
    Track original = GetMovieIndTrackType(source, 1, Code("soun"), movieTrackMediaType);
    if (original == nullptr) original = GetMovieIndTrackType(source, 1, Code("MPEG"), movieTrackMediaType);
    if (original == nullptr) return MoviesError(invalidTrack);
    if (original->media == nullptr) return MoviesError(invalidMedia);
    target->time_scale = original->media->time_scale;
    TrackRecord& track = AddTrack(*target);
    track.media = std::make_unique<MediaRecord>(*original->media);
    track.media->track = &track;
    track.media->storage = nullptr;
    const TimeValue duration = track.media->samples->duration;
    if (const OSErr code = InsertMediaIntoTrack(&track, 0, 0, duration, kNormalRate); code != noErr)
        return code;
    return MoviesError(AddTextTrack(target, std::max<TimeValue>(duration, 1)));
}

std::string FirstText(Movie movie) {
    const Track track = GetMovieIndTrackType(movie, 1, Code("text"), movieTrackMediaType);
    if (track == nullptr || track->media->samples->runs.empty()) return {};
    const MediaSamples& samples = *track->media->samples;
    if (samples.runs[0].size > kLongestText) return {};
    Bytes sample(samples.runs[0].size);
    std::int64_t read = 0;
    if (ReadSamples(samples, 0, 1, sample, read) != noErr || read == 0) return {};
    const auto text = Tail(sample, 2, BigEndian16(sample, 0));
    return {reinterpret_cast<const char*>(text.data()), text.size()};
}

} // namespace qt
