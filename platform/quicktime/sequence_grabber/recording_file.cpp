#include "platform/quicktime/sequence_grabber/recording_file.h"

#include "platform/quicktime/movies/movie_files.h"
#include "platform/quicktime/movies/movie_writer.h"
#include "platform/quicktime/movies/sound_description.h"

namespace qt {

OSErr RecordingFile::Open(Handle data_reference, OSType type, const PcmLayout& layout) {
    const std::string path = UnixPathOf(data_reference, type);
    if (path.empty()) return fnfErr;
    layout_ = layout;
    storage_ = std::make_shared<StorageFile>();
    if (const OSErr code = storage_->OpenForRecording(path); code != noErr) return code;
    movie_.reset(NewMovie(0));
    movie_->time_scale = static_cast<TimeScale>(layout.rate);
    movie_->storage = storage_;
    movie_->file = CopyDataReference(data_reference, type);
    track_ = NewMovieTrack(movie_.get(), 0, 0, kFullVolume);
    const Media media = NewTrackMedia(track_, Code("soun"), movie_->time_scale, nullptr, 0);
    if (media == nullptr) return GetMoviesError();
    const Bytes description = DescribePcm(layout);
    Handle block = nullptr;
    if (const OSErr code = PtrToHand(description.data(), &block, static_cast<Size>(description.size())))
        return code;
    description_ = MemoryHandle(block);
    return BeginMediaEdits(media);
}

OSErr RecordingFile::Begin() {
    const OSErr code = storage_->BeginRecording();
    return code == noErr ? Finish() : code;
}

OSErr RecordingFile::Append(std::span<const std::byte> samples) {
    constexpr auto kRhythm = std::chrono::seconds(1);
    const std::size_t frames = samples.size() / layout_.FrameBytes();
    if (frames > 0) {
        const Media media = track_->media.get();
        const OSErr code =
            AddMediaSample(media, samples, 1, description_.get(), static_cast<std::int64_t>(frames));
        if (code != noErr) return code;
        if (track_->segments.empty()) finished_ = {}; // the first samples make it a file that can be opened
        const TimeValue duration = media->samples->duration;
        track_->segments = {{0, duration, 0, duration}};
    }
    return Clock::now() - finished_ >= kRhythm ? Finish() : noErr;
}

OSErr RecordingFile::Finish() {
    finished_ = Clock::now();
    movie_->modified = CurrentMovieTime();
    return WriteMovie(*movie_, *storage_, ForeignSamples::kReferTo);
}

} // namespace qt
