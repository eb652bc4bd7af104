// Files that the sound module demultiplexes: whatever no importer of this folder knows.

#include "platform/quicktime/image_codecs/codec.h"
#include "platform/quicktime/movies/importers.h"
#include "platform/quicktime/movies/sound_description.h"
#include "platform/quicktime/movies/sound_module.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace qt {
namespace {

class DemultiplexedReader final : public FrameReader {
public:
    explicit DemultiplexedReader(std::unique_ptr<DemultiplexedSound> sound) : sound_(std::move(sound)) {
        layout_ = FloatLayout(sound_->GetFacts().channels, sound_->GetFacts().rate);
    }

    FramesRead Read(std::int64_t start, std::span<std::byte> frames) override {
        if (start < position_ && !Rewind()) return {badFileFormat, 0};
        FramesRead read;
        const auto wanted = static_cast<std::int64_t>(frames.size() / layout_.FrameBytes());
        while (read.frames < wanted) {
            const auto available = static_cast<std::int64_t>((decoded_.size() - used_) / layout_.channels);
            if (available == 0) {
                decoded_.clear();
                used_ = 0;
                if (!sound_->Decode(decoded_)) break;
                continue;
            }
            const std::int64_t ahead = start + read.frames - position_;
            const std::int64_t count = std::min(available, ahead > 0 ? ahead : wanted - read.frames);
            const auto size = static_cast<std::size_t>(count) * layout_.FrameBytes();
            if (ahead <= 0) {
                std::memcpy(frames.data() + static_cast<std::size_t>(read.frames) * layout_.FrameBytes(),
                            decoded_.data() + used_, size);
                read.frames += count;
            }
            used_ += static_cast<std::size_t>(count) * layout_.channels;
            position_ += count;
        }
        return read;
    }

private:
    bool Rewind() {
        position_ = 0;
        decoded_.clear();
        used_ = 0;
        return sound_->Rewind();
    }

    std::unique_ptr<DemultiplexedSound> sound_;
    std::vector<float> decoded_;
    std::size_t used_ = 0;      ///< values of `decoded_` that are gone
    std::int64_t position_ = 0; ///< frame that `decoded_` continues with
};

OpenedReader OpenReader(const std::shared_ptr<DataSource>& data) {
    const FfmpegModule* module = SoundModule();
    if (module == nullptr) return {cantOpenHandler, nullptr};
    auto sound = module->open_file(data);
    if (sound == nullptr) return {badFileFormat, nullptr};
    return {noErr, std::make_unique<DemultiplexedReader>(std::move(sound))};
}

/// Their first bytes tell it, and the module needs not be loaded.
bool IsImage(DataSource& data) {
    std::array<std::byte, kSniffedBytes> head;
    return FindImageCodec(std::span(head).first(data.Read(0, head))) != nullptr;
}

} // namespace

Imported ImportOther(const ImportSource& source) {
    if (source.data->GetSize() == 0 || IsImage(*source.data)) return {};
    const FfmpegModule* module = SoundModule();
    if (module == nullptr) return {};
    const auto sound = module->open_file(source.data);
    if (sound == nullptr) return {};
    const DemultiplexedSound::Facts& facts = sound->GetFacts();
    CompressedSound described;
    described.data_format = facts.format;
    described.channels = facts.channels;
    described.rate = facts.rate;
    described.frames_per_packet = facts.frames_per_packet;
    described.average_bytes_per_second = facts.bits_per_second / 8;
    auto samples = std::make_shared<MediaSamples>();
    samples->duration = facts.frames;
    samples->descriptions.push_back(DescribeCompressed(described));
    samples->open_decoder = [data = source.data] { return OpenReader(data); };
    AddWholeFileRun(source, *samples);
    Imported imported = {noErr, facts.importer, MovieOfSound(source, facts.rate, std::move(samples))};
    if (facts.has_video) { // its pictures are not read, but it shows that it has them
        TrackRecord& track = AddTrack(*imported.movie);
        track.media = std::make_unique<MediaRecord>();
        track.media->track = &track;
        track.media->type = Code("vide");
        track.media->samples = std::make_shared<MediaSamples>();
    }
    return imported;
}

} // namespace qt
