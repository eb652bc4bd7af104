#include "platform/quicktime/movies/movie_atoms.h"

#include "platform/quicktime/movies/movie_writer.h"
#include "platform/quicktime/movies/sample_tables.h"
#include "platform/quicktime/movies/sound_description.h"

#include <algorithm>
#include <charconv>
#include <filesystem>

namespace qt {
namespace {

constexpr std::uint64_t kLargestStructure = 256U << 20;
constexpr std::size_t kMostTracks = 256;
constexpr std::size_t kMostReferences = 64;
constexpr TimeValue kLongestLeadIn = 16384; ///< more than any encoder's delay; beyond it an edit is an edit

/// The file's first atom of this type at its top level; empty when there is none or it does not end.
Bytes LoadTopAtom(DataSource& data, OSType type) {
    for (std::uint64_t at = 0; at + 8 <= data.GetSize();) {
        std::array<std::byte, 16> header{};
        const auto got = std::span(header).first(data.Read(at, header));
        std::uint64_t size = BigEndian32(got, 0);
        const std::uint64_t header_size = size == 1 ? 16 : 8;
        if (size == 1) size = BigEndian(got, 8, 8);
        if (size == 0) size = data.GetSize() - at;
        if (size < header_size) return {};
        if (BigEndian32(got, 4) == type) {
            const std::uint64_t there =
                std::min(size, data.GetSize() - at) - std::min(header_size, data.GetSize() - at);
            if (there > kLargestStructure) return {};
            Bytes content(static_cast<std::size_t>(there));
            content.resize(data.Read(at + header_size, content));
            return content;
        }
        if (size > data.GetSize() - at) return {};
        at += size;
    }
    return {};
}

/// Header atoms hold times of 32 bits in version 0 and of 64 in version 1; other fields shift with them.
struct Header {
    explicit Header(std::span<const std::byte> atom) : data(atom), wide(BigEndian(atom, 0, 1) == 1) {}

    [[nodiscard]] std::uint32_t Created() const { return Time(0); }
    [[nodiscard]] std::uint32_t Modified() const { return Time(1); }
    /// A 32-bit field by its place in version 0, among those behind the two times; `durations` of the wider
    /// kind stand before it.
    [[nodiscard]] std::uint32_t Field(std::size_t offset, std::size_t durations = 0) const {
        return BigEndian32(data, offset + (wide ? 8 + 4 * durations : 0));
    }

    std::span<const std::byte> data;
    bool wide;

private:
    [[nodiscard]] std::uint32_t Time(std::size_t index) const {
        return static_cast<std::uint32_t>(wide ? BigEndian(data, 4 + 8 * index, 8)
                                               : BigEndian(data, 4 + 4 * index, 4));
    }
};

class MovieReader {
public:
    MovieReader(std::shared_ptr<DataSource> data, const DataReference& reference, std::string path,
                MovieRecord& movie)
        : data_(std::move(data)), reference_(reference), path_(std::move(path)), movie_(movie) {}

    OSErr Read(std::span<const std::byte> structure) {
        const Header header(FindAtom(structure, Code("mvhd")));
        movie_.time_scale = static_cast<TimeScale>(header.Field(12));
        if (movie_.time_scale <= 0) return invalidMovie;
        movie_.created = header.Created();
        movie_.modified = header.Modified();
        movie_.preferred_rate = static_cast<Fixed>(header.Field(20, 1));
        movie_.volume = static_cast<std::int16_t>(header.Field(24, 1) >> 16);
        for (AtomWalk walk(structure); walk.Next() && movie_.tracks.size() < kMostTracks;)
            if (walk.Type() == Code("trak")) ReadTrack(walk.Data());
        LinkTracks();
        AdoptSoundTimeScale(movie_);
        const std::uint64_t delay = StatedDelay(structure);
        for (const auto& track : movie_.tracks) FoldLeadIn(*track, static_cast<TimeValue>(delay));
        return noErr;
    }

private:
    void ReadTrack(std::span<const std::byte> atoms) {
        const auto media_atoms = FindAtom(atoms, Code("mdia"));
        const Header header(FindAtom(atoms, Code("tkhd")));
        TrackRecord& track = AddTrack(movie_);
        track.created = header.Created();
        track.modified = header.Modified();
        track.enabled = (BigEndian32(header.data, 0) & 1) != 0;
        track.volume = static_cast<std::int16_t>(header.Field(36, 1) >> 16);
        track.width = static_cast<Fixed>(header.Field(76, 1));
        track.height = static_cast<Fixed>(header.Field(80, 1));
        ids_.push_back(header.Field(12));
        links_.emplace_back();
        for (AtomWalk walk(FindAtom(atoms, Code("tref"))); walk.Next();)
            for (std::size_t i = 0; i + 4 <= walk.Data().size() && links_.back().size() < kMostTracks; i += 4)
                links_.back().push_back({walk.Type(), BigEndian32(walk.Data(), i)});
        ReadMedia(media_atoms, track);
        if (track.media != nullptr) ReadEdits(FindAtom(FindAtom(atoms, Code("edts")), Code("elst")), track);
    }

    void ReadMedia(std::span<const std::byte> atoms, TrackRecord& track) {
        const Header header(FindAtom(atoms, Code("mdhd")));
        const auto scale = static_cast<TimeScale>(header.Field(12));
        if (scale <= 0) return; // a track without media
        track.media = std::make_unique<MediaRecord>();
        MediaRecord& media = *track.media;
        media.track = &track;
        media.type = BigEndian32(FindAtom(atoms, Code("hdlr")), 8);
        media.time_scale = scale;
        media.created = header.Created();
        media.modified = header.Modified();
        media.language = static_cast<std::int16_t>(header.Field(20, 1) >> 16);
        media.quality = static_cast<std::int16_t>(header.Field(20, 1));
        media.samples = std::make_shared<MediaSamples>();
        const auto info = FindAtom(atoms, Code("minf"));
        ReadReferences(FindAtom(FindAtom(info, Code("dinf")), Code("dref")), *media.samples);
        const auto table = FindAtom(info, Code("stbl"));
        const DescriptionReferences references = ReadDescriptions(FindAtom(table, Code("stsd")), media);
        ReadSampleTable(table, media.type, references, *media.samples);
    }

    static DescriptionReferences ReadDescriptions(std::span<const std::byte> atom, MediaRecord& media) {
        constexpr std::size_t kLeastBytes = 16; // up to the number of its data reference
        DescriptionReferences references;
        for (AtomWalk walk(Tail(atom, 8)); walk.Next() && references.size() < kMostReferences;) {
            // A description is an atom whose type is the data format; it is kept with its header.
            const auto whole = walk.Whole();
            if (whole.size() < kLeastBytes) break;
            Bytes description(whole.begin(), whole.end());
            if (media.type == Code("soun")) {
                auto sound = SoundDescriptionFromFile(whole, static_cast<std::uint32_t>(media.time_scale));
                if (!sound.has_value()) break;
                description = std::move(*sound);
            }
            media.samples->descriptions.push_back(std::move(description));
            references.push_back(BigEndian16(whole, 14));
        }
        return references;
    }

    void ReadReferences(std::span<const std::byte> atom, MediaSamples& samples) {
        for (AtomWalk walk(Tail(atom, 8)); walk.Next() && samples.sources.size() < kMostReferences;) {
            const bool own = (BigEndian32(walk.Data(), 0) & 1) != 0;
            samples.sources.push_back(own ? OwnSource() : ForeignSource(walk.Type(), Tail(walk.Data(), 4)));
        }
        if (samples.sources.empty()) samples.sources.push_back(OwnSource());
    }

    [[nodiscard]] SampleSource OwnSource() const { return {CopyDataReference(reference_), data_, true}; }

    [[nodiscard]] SampleSource ForeignSource(OSType type, std::span<const std::byte> reference) const {
        SampleSource source;
        if (path_.empty()) return source;
        std::vector<std::string> candidates;
        if (type == kAliasDataHandler) candidates = ReadAlias(reference, path_);
        if (type == kUrlDataHandler) candidates = ReadUrl(reference, path_);
        for (const std::string& candidate : candidates) {
            const std::string path = std::filesystem::path(candidate).lexically_normal().string();
            if (path == path_) return OwnSource();
            OpenedSource opened = OpenFileSource(path);
            if (opened.code != noErr || ReferenceToUnixPath(path, source.reference) != noErr) continue;
            source.data = std::move(opened.source);
            break;
        }
        return source;
    }

    void ReadEdits(std::span<const std::byte> list, TrackRecord& track) const {
        const MediaRecord& media = *track.media;
        const TimeValue media_end = media.samples->duration;
        const bool wide = BigEndian(list, 0, 1) == 1;
        const std::size_t entry_size = wide ? 20 : 12;
        const std::size_t count =
            std::min<std::size_t>(BigEndian32(list, 4), Tail(list, 8).size() / entry_size);
        if (count == 0 && media_end > 0) {
            track.segments.push_back(
                {0, Scale(media_end, movie_.time_scale, media.time_scale), 0, media_end});
        }
        TimeValue start = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const auto entry = Tail(list, 8 + i * entry_size, entry_size);
            Segment segment;
            segment.start = start;
            segment.duration =
                static_cast<TimeValue>(std::min<std::uint64_t>(BigEndian(entry, 0, wide ? 8 : 4), kLongest));
            const auto media_start = wide ? static_cast<std::int64_t>(BigEndian(entry, 8, 8))
                                          : std::int64_t{static_cast<std::int32_t>(BigEndian32(entry, 4))};
            if (media_start >= 0 && media_start < media_end) {
                const TimeValue left = media_end - media_start;
                segment.media_start = media_start;
                segment.media_duration =
                    std::min(left, Scale(segment.duration, media.time_scale, movie_.time_scale));
                if (segment.duration == 0 && count == 1) { // all of it, say files whose length was not known
                    segment.media_duration = left;
                    segment.duration = Scale(left, movie_.time_scale, media.time_scale);
                }
                if (segment.media_duration > 0) track.segments.push_back(segment);
            }
            start += segment.duration;
            if (start > kLongest) break;
        }
    }

    void LinkTracks() {
        for (std::size_t i = 0; i < links_.size(); ++i) {
            for (const auto& [type, id] : links_[i]) {
                const auto target = std::find(ids_.begin(), ids_.end(), id);
                if (target == ids_.end()) continue;
                TrackRecord* const other =
                    movie_.tracks[static_cast<std::size_t>(target - ids_.begin())].get();
                movie_.tracks[i]->references.push_back({type, other});
            }
        }
    }

    /// Frames that the encoder says it put before the sound, in the item list's gapless note; 0 without one.
    static std::uint64_t StatedDelay(std::span<const std::byte> structure) {
        const auto meta = FindAtom(FindAtom(structure, Code("udta")), Code("meta"));
        for (AtomWalk walk(FindAtom(Tail(meta, 4), Code("ilst"))); walk.Next();) {
            if (walk.Type() != Code("----")) continue;
            const auto name = Tail(FindAtom(walk.Data(), Code("name")), 4);
            constexpr std::string_view kNote = "iTunSMPB";
            if (!std::ranges::equal(name, std::as_bytes(std::span(kNote)))) continue;
            const auto value = Tail(FindAtom(walk.Data(), Code("data")), 8);
            const std::string_view text(reinterpret_cast<const char*>(value.data()), value.size());
            std::uint64_t delay = 0; // " 00000000 00000840 …": the second number
            if (text.size() >= 18) std::from_chars(text.data() + 10, text.data() + 18, delay, 16);
            return delay <= kLongestLeadIn ? delay : 0;
        }
        return 0;
    }

    /// A compressed sound whose only edit skips the encoder's delay: its media begins where the sound does.
    static void FoldLeadIn(TrackRecord& track, TimeValue stated_delay) {
        if (track.media == nullptr || track.media->type != Code("soun") || track.segments.size() != 1) return;
        MediaSamples& samples = *track.media->samples;
        Segment& segment = track.segments[0];
        if (samples.descriptions.empty() || LayoutOf(samples.descriptions[0]).has_value()) return;
        if (segment.media_start == 0 && stated_delay < segment.media_duration) {
            segment.media_start = stated_delay;
            segment.media_duration -= stated_delay;
            segment.duration =
                Scale(segment.media_duration, track.movie->time_scale, track.media->time_scale);
        }
        if (segment.media_start > kLongestLeadIn) return;
        samples.lead_in = segment.media_start;
        samples.duration = segment.media_duration;
        segment.media_start = 0;
    }

    static constexpr TimeValue kLongest = TimeValue{1} << 60;

    std::shared_ptr<DataSource> data_;
    const DataReference& reference_;
    std::string path_;
    MovieRecord& movie_;
    std::vector<std::uint32_t> ids_;
    std::vector<std::vector<std::pair<OSType, std::uint32_t>>> links_;
};

bool HasSamples(const MovieRecord& movie) {
    return std::any_of(movie.tracks.begin(), movie.tracks.end(), [](const auto& track) {
        return track->media != nullptr && !track->media->samples->runs.empty();
    });
}

} // namespace

ReadMovie ReadMovieFile(const std::shared_ptr<DataSource>& data, const DataReference& reference,
                        const std::string& path) {
    ReadMovie read;
    const Bytes structure = LoadTopAtom(*data, Code("moov"));
    if (structure.empty()) return {noMovieFound, nullptr, false};
    read.movie.reset(NewMovie(0));
    read.movie->file = CopyDataReference(reference);
    read.code = MovieReader(data, reference, path, *read.movie).Read(structure);
    read.fragmented = !FindAtom(structure, Code("mvex")).empty() &&
                      (!HasSamples(*read.movie) || !LoadTopAtom(*data, Code("moof")).empty());
    if (read.code != noErr) read.movie.reset();
    return read;
}

} // namespace qt
