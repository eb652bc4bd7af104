#include "sounds/sound_track.h"

#include "files/data_reference.h"
#include "platform/quicktime/movies/movie_files.h"

namespace corvane {

SoundTrack FirstSoundTrack(Movie movie) {
    if (movie == nullptr) return {invalidMovie, nullptr, nullptr};
    const Track track = GetMovieIndTrackType(movie, 1, qt::Code("ears"), movieTrackCharacteristic);
    if (track == nullptr) return {invalidTrack, nullptr, nullptr};
    const Media media = GetTrackMedia(track);
    return {media != nullptr ? noErr : invalidMedia, track, media};
}

std::int32_t SoundReference(Movie movie, qt::DataReference& reference) {
    if (movie != nullptr && GetMovieDefaultDataRef(movie, reference) == noErr) return 0;
    const SoundTrack sound = FirstSoundTrack(movie);
    if (sound.code != 0) return sound.code;
    std::int32_t attributes = 0;
    return GetMediaDataRef(sound.media, 1, reference, &attributes);
}

std::int32_t MovieFileOf(Movie movie, XFileSpec& file) {
    qt::DataReference reference;
    if (const std::int32_t code = SoundReference(movie, reference); code != 0) return code;
    return FileOfDataReference(reference, file);
}

} // namespace corvane
