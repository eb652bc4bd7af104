#include "platform/quicktime/movies/sound_resource.h"

#include "platform/quicktime/movies/handle_bytes.h"
#include "platform/quicktime/movies/movie_files.h"
#include "platform/quicktime/movies/movie_model.h"
#include "platform/quicktime/movies/sound_description.h"
#include "platform/quicktime/movies/sound_renderer.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace qt {
namespace {

constexpr OSType kSoundResource = Code("snd ");
constexpr std::uint16_t kSampledSynthesizer = 5;
constexpr std::uint32_t kMono = 0x80;
constexpr std::uint16_t kBufferCommand = 0x8051; ///< play the header at the offset that follows
constexpr std::uint16_t kSoundCommand = 0x8050;
constexpr std::uint32_t kHeaderOffset = 20;
constexpr std::uint8_t kStandardHeader = 0;
constexpr std::uint8_t kExtendedHeader = 0xFF;
constexpr std::uint8_t kCompressedHeader = 0xFE;
constexpr std::uint8_t kMiddleC = 60;
constexpr std::uint32_t kResourceRate = 44100;

/// What a resource's header says of its samples.
struct ResourceSound {
    OSType format = 0;
    std::uint32_t channels = 1;
    std::uint32_t rate = 0;  ///< unsigned 16.16
    std::uint64_t count = 0; ///< frames, or packets
    std::uint32_t bits = 8;
    std::span<const std::byte> samples;
};

/// Offset of the sampled-sound header that the resource's commands play.
std::optional<std::size_t> FindHeader(std::span<const std::byte> resource) {
    const std::uint16_t format = BigEndian16(resource, 0);
    std::size_t commands = 4; // format 2: a reference count stands before their number
    if (format == 1) commands = 4 + std::size_t{6} * BigEndian16(resource, 2);
    if (format != 1 && format != 2) return std::nullopt;
    const std::size_t count = BigEndian16(resource, commands);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = commands + 2 + 8 * i;
        const std::uint16_t command = BigEndian16(resource, at);
        if (command == kBufferCommand || command == kSoundCommand) return BigEndian32(resource, at + 4);
    }
    return std::nullopt;
}

OSType CompressedFormat(std::span<const std::byte> header) {
    constexpr std::int16_t kThreeToOne = 3;
    constexpr std::int16_t kSixToOne = 4;
    const auto id = static_cast<std::int16_t>(BigEndian16(header, 56));
    if (id == kThreeToOne) return Code("MAC3");
    if (id == kSixToOne) return Code("MAC6");
    return BigEndian32(header, 40);
}

std::optional<ResourceSound> ReadResource(std::span<const std::byte> resource) {
    const auto offset = FindHeader(resource);
    if (!offset.has_value()) return std::nullopt;
    const auto header = Tail(resource, *offset);
    if (header.size() < 22) return std::nullopt;
    const auto encode = static_cast<std::uint8_t>(BigEndian(header, 20, 1));
    ResourceSound sound;
    sound.rate = BigEndian32(header, 8);
    if (encode == kStandardHeader) {
        sound.format = Code("raw ");
        sound.count = BigEndian32(header, 4);
        sound.samples = Tail(header, 22);
        return sound;
    }
    if ((encode != kExtendedHeader && encode != kCompressedHeader) || header.size() < 64) return std::nullopt;
    sound.channels = BigEndian32(header, 4);
    sound.count = BigEndian32(header, 22);
    sound.samples = Tail(header, 64);
    if (encode == kExtendedHeader) {
        sound.bits = BigEndian16(header, 48);
        sound.format = sound.bits == 16 ? Code("twos") : Code("raw ");
        if (sound.bits != 8 && sound.bits != 16) return std::nullopt;
    } else {
        sound.bits = BigEndian16(header, 62);
        sound.format = CompressedFormat(header);
        if (sound.format == 0 || sound.format == Code("NONE"))
            sound.format = sound.bits == 16 ? Code("twos") : Code("raw ");
    }
    return sound;
}

Bytes Describe(const ResourceSound& sound) {
    SoundDescription description;
    description.dataFormat = sound.format;
    description.numChannels = static_cast<std::int16_t>(sound.channels);
    description.sampleSize = static_cast<std::int16_t>(sound.bits);
    description.sampleRate = sound.rate;
    const auto bytes = std::as_bytes(std::span(&description, 1));
    return {bytes.begin(), bytes.end()};
}

std::shared_ptr<MediaSamples> SamplesOf(const ResourceSound& sound) {
    auto samples = std::make_shared<MediaSamples>();
    samples->descriptions.push_back(Describe(sound));
    SampleRun run;
    if (const auto layout = LayoutOf(samples->descriptions[0]); layout.has_value()) {
        run.size = layout->FrameBytes();
    } else if (const auto format = ReadSoundFormat(samples->descriptions[0]); format.has_value()) {
        run.size = format->bytes_per_packet;
        run.duration = format->frames_per_packet;
    }
    if (run.size == 0 || run.duration == 0) return nullptr;
    run.count = std::min<std::uint64_t>(sound.count, sound.samples.size() / run.size);
    samples->Append(run);
    samples->duration = run.End();
    SampleSource source;
    source.reference = MemoryReference();
    source.data = MemorySource(Bytes(sound.samples.begin(), sound.samples.end()));
    samples->sources.push_back(std::move(source));
    return samples;
}

/// Format 1 with one synthesizer, one command and a standard header in front of the samples.
Bytes MakeResource(std::span<const std::byte> samples) {
    AtomWriter writer;
    writer.Put16(1);
    writer.Put16(1);
    writer.Put16(kSampledSynthesizer);
    writer.Put32(kMono);
    writer.Put16(1);
    writer.Put16(kBufferCommand);
    writer.Put16(0);
    writer.Put32(kHeaderOffset);
    writer.Put32(0);
    writer.Put32(static_cast<std::uint32_t>(samples.size()));
    writer.Put32(kResourceRate << 16);
    writer.Zeros(8); // no loop
    writer.Put8(kStandardHeader);
    writer.Put8(kMiddleC);
    writer.Put(samples);
    return writer.Take();
}

/// All frames of a track's media, whatever its edits, as the resource holds them.
OSErr RenderMedia(const TrackRecord& track, Bytes& samples) {
    MovieRecord whole;
    TrackRecord& only = AddTrack(whole);
    only.media = std::make_unique<MediaRecord>(*track.media);
    only.media->track = &only;
    only.media->input_map.clear();
    whole.time_scale = track.media->time_scale;
    const TimeValue duration = track.media->samples->duration;
    if (duration > 0) only.segments.push_back({0, duration, 0, duration});
    const PcmLayout layout = {SampleEncoding::kUnsigned8, false, 1, kResourceRate};
    std::unique_ptr<SoundRenderer> renderer;
    if (const OSErr code = SoundRenderer::Open(whole, &only, layout, renderer); code != noErr) return code;
    if (renderer->GetFrames() > std::numeric_limits<std::int32_t>::max()) return memFullErr;
    samples.resize(static_cast<std::size_t>(renderer->GetFrames()));
    return renderer->Read(samples).code;
}

} // namespace
} // namespace qt

OSErr PutMovieIntoTypedHandle(Movie movie, Track track, OSType type, Handle resource) {
    if (movie == nullptr || resource == nullptr)
        return qt::MoviesError(movie == nullptr ? invalidMovie : paramErr);
    if (type != qt::kSoundResource) return qt::MoviesError(cantFindHandler);
    if (track == nullptr) track = GetMovieIndTrackType(movie, 1, qt::Code("soun"), movieTrackMediaType);
    if (track == nullptr) return qt::MoviesError(invalidTrack);
    if (track->media == nullptr) return qt::MoviesError(invalidMedia);
    qt::Bytes samples;
    if (const OSErr code = qt::RenderMedia(*track, samples); code != noErr) return qt::MoviesError(code);
    return qt::MoviesError(qt::SetHandleBytes(resource, qt::MakeResource(samples)));
}

OSErr PasteHandleIntoMovie(Handle resource, OSType type, Movie movie) {
    if (movie == nullptr) return qt::MoviesError(invalidMovie);
    if (type != qt::kSoundResource) return qt::MoviesError(cantFindHandler);
    const auto sound = qt::ReadResource(qt::HandleBytes(resource));
    const bool usable =
        sound.has_value() && sound->channels > 0 && sound->channels <= 64 && sound->rate >= 1U << 16;
    auto samples = usable ? qt::SamplesOf(*sound) : nullptr;
    if (samples == nullptr) return qt::MoviesError(badFileFormat);
    const auto rate = static_cast<TimeScale>((sound->rate + 0x8000) >> 16);
    if (movie->tracks.empty()) movie->time_scale = rate;
    const TimeValue start = GetMovieDuration(movie);
    qt::TrackRecord& track = qt::AddTrack(*movie);
    track.media = std::make_unique<qt::MediaRecord>();
    track.media->track = &track;
    track.media->type = qt::Code("soun");
    track.media->time_scale = rate;
    track.media->created = track.media->modified = track.created;
    const TimeValue duration = samples->duration;
    track.media->samples = std::move(samples);
    return InsertMediaIntoTrack(&track, start, 0, duration, kNormalRate);
}
