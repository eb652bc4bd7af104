#include "platform/quicktime/movies/media.h"

#include "platform/quicktime/movies/handle_bytes.h"
#include "platform/quicktime/movies/movie_files.h"
#include "platform/quicktime/movies/movie_model.h"
#include "platform/quicktime/movies/sound_description.h"

#include <algorithm>
#include <limits>

namespace {

using qt::MoviesError;

/// Samples in memory, in the blocks that they came in: adding one never moves the others.
class GrowingMemory final : public qt::GrowingData {
public:
    [[nodiscard]] std::uint64_t GetSize() const noexcept override { return size_; }

    std::size_t Read(std::uint64_t offset, std::span<std::byte> buffer) noexcept override {
        auto block = std::upper_bound(blocks_.begin(), blocks_.end(), offset,
                                      [](std::uint64_t at, const Block& other) { return at < other.start; });
        if (block == blocks_.begin()) return 0;
        std::size_t done = 0;
        for (--block; block != blocks_.end() && done < buffer.size(); ++block) {
            const auto bytes = qt::Tail(block->bytes, offset + done - block->start, buffer.size() - done);
            std::copy(bytes.begin(), bytes.end(), buffer.begin() + static_cast<std::ptrdiff_t>(done));
            done += bytes.size();
        }
        return done;
    }

    OSErr Append(std::span<const std::byte> bytes) override {
        blocks_.push_back({size_, qt::Bytes(bytes.begin(), bytes.end())});
        size_ += bytes.size();
        return noErr;
    }

private:
    struct Block {
        std::uint64_t start;
        qt::Bytes bytes;
    };
    std::vector<Block> blocks_;
    std::uint64_t size_ = 0;
};

/// How many bytes the samples take that one read from `time` in `first` on can give, `count` at most.
Size BytesOf(const qt::MediaSamples& samples, const qt::SampleRun& first, TimeValue time,
             std::int64_t count) {
    Size size = 0;
    const qt::SampleRun* const end = samples.runs.data() + samples.runs.size();
    for (const auto* run = &first; run != end && count > 0 && run->description == first.description; ++run) {
        if (samples.sources[run->source].data == nullptr) break; // its counts are nobody's but the file's
        const auto all = static_cast<std::int64_t>(run->count);
        const std::int64_t taken =
            std::min(count, run == &first ? all - (time - run->start) / run->duration : all);
        size += taken * run->size;
        count -= taken;
    }
    return size;
}

std::uint16_t DescriptionIndex(qt::MediaSamples& samples, std::span<const std::byte> description) {
    const auto same = [&](const qt::Bytes& other) { return std::ranges::equal(other, description); };
    const auto found = std::find_if(samples.descriptions.begin(), samples.descriptions.end(), same);
    const auto index = static_cast<std::uint16_t>(found - samples.descriptions.begin());
    if (found == samples.descriptions.end())
        samples.descriptions.emplace_back(description.begin(), description.end());
    return index;
}

/// Where the samples come from that the media's storage takes in.
std::uint16_t StorageIndex(qt::MediaRecord& media) {
    auto& sources = media.samples->sources;
    const auto found = std::find_if(sources.begin(), sources.end(), [&](const qt::SampleSource& source) {
        return source.data == media.storage;
    });
    const auto index = static_cast<std::uint16_t>(found - sources.begin());
    if (found == sources.end()) {
        qt::SampleSource source;
        source.data = media.storage;
        source.in_movie_file = media.storage == media.track->movie->storage;
        source.reference =
            source.in_movie_file ? qt::CopyDataReference(media.track->movie->file) : qt::MemoryReference();
        sources.push_back(std::move(source));
    }
    return index;
}

} // namespace

Media NewTrackMedia(Track track, OSType type, TimeScale scale, Handle data_reference, OSType reference_type) {
    if (MoviesError(track == nullptr ? invalidTrack : scale <= 0 ? paramErr : noErr) != noErr) return nullptr;
    auto media = std::make_unique<qt::MediaRecord>();
    media->track = track;
    media->type = type;
    media->time_scale = scale;
    media->created = media->modified = qt::CurrentMovieTime();
    media->samples = std::make_shared<qt::MediaSamples>();
    if (data_reference == nullptr && reference_type != qt::kHandleDataHandler) {
        media->storage = track->movie->storage;
        if (media->storage == nullptr) {
            MoviesError(noDefaultDataRef);
            return nullptr;
        }
    } else if (reference_type == qt::kHandleDataHandler) {
        media->storage = std::make_shared<GrowingMemory>();
    }
    track->media = std::move(media);
    return track->media.get();
}

OSType GetMediaType(Media media) {
    return media->type;
}

Track GetMediaTrack(Media media) {
    return media->track;
}

TimeScale GetMediaTimeScale(Media media) {
    return media->time_scale;
}

TimeValue GetMediaDuration(Media media) {
    return media->samples->duration;
}

std::uint32_t GetMediaCreationTime(Media media) {
    return media->created;
}

std::uint32_t GetMediaModificationTime(Media media) {
    return media->modified;
}

std::int16_t GetMediaLanguage(Media media) {
    return media->language;
}

std::int16_t GetMediaQuality(Media media) {
    return media->quality;
}

std::int32_t GetMediaSampleDescriptionCount(Media media) {
    return static_cast<std::int32_t>(media->samples->descriptions.size());
}

OSErr GetMediaSampleDescription(Media media, std::int32_t index, Handle description) {
    if (media == nullptr) return MoviesError(invalidMedia);
    if (index < 1 || index > GetMediaSampleDescriptionCount(media)) return MoviesError(-2039);
    return MoviesError(
        qt::SetHandleBytes(description, media->samples->descriptions[static_cast<std::size_t>(index - 1)]));
}

OSErr GetMediaDataRef(Media media, std::int32_t index, qt::DataReference& reference,
                      std::int32_t* attributes) {
    if (media == nullptr) return MoviesError(invalidMedia);
    const auto& sources = media->samples->sources;
    if (index < 1 || static_cast<std::size_t>(index) > sources.size()) return MoviesError(badDataRefIndex);
    const qt::SampleSource& source = sources[static_cast<std::size_t>(index - 1)];
    if (source.reference.handle.get() == nullptr) return MoviesError(badDataRefIndex);
    reference = qt::CopyDataReference(source.reference);
    *attributes = source.in_movie_file ? dataRefSelfReference : 0;
    return MoviesError(noErr);
}

OSErr BeginMediaEdits(Media media) {
    if (media == nullptr) return MoviesError(invalidMedia);
    if (media->editing || media->samples->open_decoder) return MoviesError(invalidEditState);
    if (media->storage == nullptr) {
        auto& storage = media->track->movie->storage;
        if (storage == nullptr) {
            if (const OSErr code = qt::OpenMovieStorage(*media->track->movie); code != noErr)
                return MoviesError(code);
        }
        media->storage = storage;
    }
    media->editing = true;
    return MoviesError(media->samples->LoadRuns());
}

OSErr EndMediaEdits(Media media) {
    if (media == nullptr) return MoviesError(invalidMedia);
    if (!media->editing) return MoviesError(invalidEditState);
    media->editing = false;
    return MoviesError(noErr);
}

OSErr AddMediaSample(Media media, std::span<const std::byte> data, TimeValue duration, Handle description,
                     std::int64_t samples) {
    if (media == nullptr) return MoviesError(invalidMedia);
    if (!media->editing) return MoviesError(invalidEditState);
    const auto count = static_cast<std::uint64_t>(samples);
    const bool counts_fit = samples > 0 && data.size() % count == 0 && duration > 0 &&
                            duration <= std::numeric_limits<std::int32_t>::max() &&
                            data.size() / count <= std::numeric_limits<std::uint32_t>::max();
    if (!counts_fit) return MoviesError(samples == 0 && data.empty() ? noErr : paramErr);
    const auto description_bytes = qt::HandleBytes(description);
    if (description_bytes.size() < 16) return MoviesError(invalidSampleDescription);
    qt::MediaSamples& all = *media->samples;
    qt::SampleRun run;
    run.start = all.lead_in + all.duration;
    run.count = count;
    run.duration = static_cast<std::uint32_t>(duration);
    run.size = static_cast<std::uint32_t>(data.size() / count);
    run.description = DescriptionIndex(all, description_bytes);
    run.source = StorageIndex(*media);
    run.offset = media->storage->GetSize();
    if (const OSErr code = media->storage->Append(data); code != noErr) return MoviesError(code);
    all.Append(run);
    all.duration = run.End() - all.lead_in;
    return MoviesError(noErr);
}

OSErr GetMediaSample(Media media, TimeValue time, std::int64_t count, Handle data, Handle description,
                     std::int64_t* samples) {
    *samples = 0;
    if (media == nullptr) return MoviesError(invalidMedia);
    qt::MediaSamples& all = *media->samples;
    if (all.open_decoder) return MoviesError(cantFindHandler);
    if (const OSErr code = all.LoadRuns(); code != noErr) return MoviesError(code);
    time += all.lead_in;
    const qt::SampleRun* first = qt::FindRun(all, time);
    if (first == nullptr || count <= 0)
        return MoviesError(count < 0 ? paramErr : first == nullptr ? invalidTime : noErr);
    if (all.sources[first->source].data == nullptr) return MoviesError(fnfErr);
    SetHandleSize(data, BytesOf(all, *first, time, count));
    if (const OSErr code = MemError(); code != noErr) return MoviesError(code);
    const OSErr code = qt::ReadSamples(all, time, count, qt::HandleBytes(data), *samples);
    SetHandleSize(data, BytesOf(all, *first, time, *samples));
    if (code != noErr) return MoviesError(code);
    if (description == nullptr) return MoviesError(noErr);
    return MoviesError(qt::SetHandleBytes(description, all.descriptions[first->description]));
}

OSErr SetMediaInputMap(Media media, Handle input_map) {
    if (media == nullptr) return MoviesError(invalidMedia);
    const auto bytes = qt::HandleBytes(input_map);
    media->input_map.assign(bytes.begin(), bytes.end());
    return MoviesError(noErr);
}
