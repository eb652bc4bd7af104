#include "sounds/sample_block.h"

#include "platform/quicktime/movies/sound_description.h"

namespace corvane {

std::int32_t SampleBlock::Read(Media media, TimeValue start, std::int64_t count) {
    frames_ = 0;
    if (!samples_ || !description_) return memFullErr;
    const OSErr code = GetMediaSample(media, start, count, samples_.get(), description_.get(), &frames_);
    if (code != noErr) return code;
    if (frames_ == 0) return eofErr;
    const auto format = qt::ReadSoundFormat(qt::HandleBytes(description_.get()));
    if (!format) return invalidSampleDescription;
    format_ = format->data_format;
    channels_ = format->channels;
    return 0;
}

std::int32_t SampleBlock::AddTo(Media media, const SampleBlock& like) const {
    return AddMediaSample(media, Samples(), 1, like.description_.get(), frames_);
}

FirstFormat FirstSampleFormat(Media media) {
    const qt::MemoryHandle description(NewHandle(0));
    if (!description) return {memFullErr, 0};
    const OSErr code = GetMediaSampleDescription(media, 1, description.get());
    if (code != noErr) return {code, 0};
    const auto format = qt::ReadSoundFormat(qt::HandleBytes(description.get()));
    return format ? FirstFormat{0, format->data_format} : FirstFormat{invalidSampleDescription, 0};
}

} // namespace corvane
