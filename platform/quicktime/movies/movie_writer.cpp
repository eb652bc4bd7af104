#include "platform/quicktime/movies/movie_writer.h"

#include "platform/quicktime/movies/movie_files.h"
#include "platform/quicktime/movies/sound_description.h"

#include <algorithm>
#include <array>
#include <limits>

namespace qt {
namespace {

constexpr std::uint64_t kChunkBytes = 1U << 18;
constexpr std::uint64_t kChunkSamples = 1U << 16;
constexpr std::size_t kCopyBlock = 1U << 20;
constexpr std::uint32_t kSelfContained = 1;

std::uint32_t Limited(std::int64_t value) {
    return static_cast<std::uint32_t>(
        std::clamp<std::int64_t>(value, 0, std::numeric_limits<std::uint32_t>::max()));
}

/// A sample description in the file: one of the media's, for samples in one place.
struct Entry {
    std::uint16_t description;
    std::uint16_t reference; ///< index into the references
};

struct Chunk {
    std::uint64_t offset;
    std::uint32_t samples;
    std::uint32_t entry; ///< from 1
};

/// Where the samples of a media are in the written file, and what its tables say.
struct Placement {
    std::vector<std::string> references; ///< Unix paths; empty: this file
    std::vector<Entry> entries;
    std::vector<SampleRun> runs;
    std::vector<Chunk> chunks;
};

std::uint16_t IndexOf(std::vector<std::string>& references, const std::string& path) {
    const auto found = std::find(references.begin(), references.end(), path);
    const auto index = static_cast<std::uint16_t>(found - references.begin());
    if (found == references.end()) references.push_back(path);
    return index;
}

std::uint32_t EntryOf(std::vector<Entry>& entries, const Entry& wanted) {
    const auto same = [&](const Entry& entry) {
        return entry.description == wanted.description && entry.reference == wanted.reference;
    };
    const auto found = std::find_if(entries.begin(), entries.end(), same);
    const auto index = static_cast<std::uint32_t>(found - entries.begin()) + 1;
    if (found == entries.end()) entries.push_back(wanted);
    return index;
}

OSErr CopyRun(DataSource& source, SampleRun& run, StorageFile& file) {
    const std::uint64_t offset = file.GetSize();
    std::uint64_t left = run.count * run.size;
    Bytes block(static_cast<std::size_t>(std::min<std::uint64_t>(left, kCopyBlock)));
    for (std::uint64_t at = run.offset; left > 0;) {
        const auto part =
            std::span(block).first(static_cast<std::size_t>(std::min<std::uint64_t>(left, block.size())));
        if (source.Read(at, part) != part.size()) return eofErr;
        if (const OSErr code = file.Append(part); code != noErr) return code;
        at += part.size();
        left -= part.size();
    }
    run.offset = offset;
    return noErr;
}

/// Cuts a run into chunks, or adds it to the last one that it continues.
void AddChunks(Placement& placement, const SampleRun& run, std::uint32_t entry) {
    std::uint64_t offset = run.offset;
    const std::uint64_t by_size =
        std::max<std::uint64_t>(1, kChunkBytes / std::max<std::uint32_t>(1, run.size));
    if (run.count == 1 && !placement.chunks.empty()) {
        Chunk& last = placement.chunks.back();
        const SampleRun& before = placement.runs.back();
        const bool continues = last.entry == entry && before.offset + before.count * before.size == offset;
        if (continues && offset - last.offset < kChunkBytes && last.samples < kChunkSamples) {
            ++last.samples;
            return;
        }
    }
    for (std::uint64_t left = run.count; left > 0;) {
        const std::uint64_t count = std::min({left, by_size, kChunkSamples});
        placement.chunks.push_back({offset, static_cast<std::uint32_t>(count), entry});
        offset += count * run.size;
        left -= count;
    }
}

OSErr Place(MediaSamples& samples, StorageFile& file, ForeignSamples foreign, Placement& placement) {
    if (const OSErr code = samples.LoadRuns(); code != noErr) return code;
    if (samples.open_decoder && (foreign == ForeignSamples::kCopy || samples.runs.empty()))
        return invalidSampleTable;
    const auto path_of = [&](const SampleSource& source) {
        const bool stays = foreign == ForeignSamples::kCopy || source.data.get() == &file;
        return stays ? std::string() : UnixPathOf(source.reference.handle.get(), source.reference.type);
    };
    const auto refer_to = [&](const std::string& path) {
        return IndexOf(placement.references, path == file.Path() ? std::string() : path);
    };
    for (SampleRun run : samples.runs) {
        const SampleSource& source = samples.sources[run.source];
        const std::string path = path_of(source);
        if (path.empty() && source.data.get() != &file) {
            if (source.data == nullptr) return couldNotResolveDataRef;
            if (const OSErr code = CopyRun(*source.data, run, file); code != noErr) return code;
        }
        const std::uint16_t reference = refer_to(path);
        AddChunks(placement, run, EntryOf(placement.entries, {run.description, reference}));
        placement.runs.push_back(run);
    }
    if (placement.runs.empty()) {
        // A movie refers to the source of no samples, too: its placeholder stands for that file.
        refer_to(samples.sources.empty() ? std::string() : path_of(samples.sources.front()));
        if (!samples.descriptions.empty()) placement.entries.push_back({0, 0});
    }
    return noErr;
}

void PutMatrix(AtomWriter& writer) {
    for (const std::uint32_t value : {0x10000U, 0U, 0U, 0U, 0x10000U, 0U, 0U, 0U, 0x40000000U})
        writer.Put32(value);
}

void PutHandler(AtomWriter& writer, OSType kind, OSType subtype, std::string_view name) {
    writer.Atom(Code("hdlr"), [&] {
        writer.Put32(0);
        writer.Put32(kind);
        writer.Put32(subtype);
        writer.Put32(Code("appl"));
        writer.Zeros(8);
        writer.Put8(static_cast<std::uint8_t>(name.size()));
        writer.Put(name);
    });
}

void PutDescriptions(AtomWriter& writer, const MediaRecord& media, const Placement& placement) {
    writer.Atom(Code("stsd"), [&] {
        writer.Put32(0);
        writer.Put32(static_cast<std::uint32_t>(placement.entries.size()));
        for (const Entry& entry : placement.entries) {
            const Bytes& description = media.samples->descriptions[entry.description];
            Bytes bytes = media.type == Code("soun") ? SoundDescriptionToFile(description) : description;
            bytes[14] = static_cast<std::byte>((entry.reference + 1) >> 8);
            bytes[15] = static_cast<std::byte>(entry.reference + 1);
            writer.Put(bytes);
        }
    });
}

/// Pairs of a count and a value, for runs of samples that have the value in common.
void PutTimes(AtomWriter& writer, const std::vector<SampleRun>& runs) {
    std::vector<std::pair<std::uint64_t, std::uint32_t>> times;
    for (const SampleRun& run : runs) {
        if (!times.empty() && times.back().second == run.duration)
            times.back().first += run.count;
        else
            times.emplace_back(run.count, run.duration);
    }
    writer.Atom(Code("stts"), [&] {
        writer.Put32(0);
        writer.Put32(static_cast<std::uint32_t>(times.size()));
        for (const auto& [count, duration] : times) {
            writer.Put32(Limited(static_cast<std::int64_t>(count)));
            writer.Put32(duration);
        }
    });
}

void PutSizes(AtomWriter& writer, const std::vector<SampleRun>& runs) {
    std::uint64_t count = 0;
    for (const SampleRun& run : runs) count += run.count;
    const bool alike =
        std::all_of(runs.begin(), runs.end(), [&](const SampleRun& run) { return run.size == runs[0].size; });
    writer.Atom(Code("stsz"), [&] {
        writer.Put32(0);
        writer.Put32(alike && !runs.empty() ? runs[0].size : 0);
        writer.Put32(Limited(static_cast<std::int64_t>(count)));
        if (alike) return;
        for (const SampleRun& run : runs)
            for (std::uint64_t i = 0; i < run.count; ++i) writer.Put32(run.size);
    });
}

void PutChunks(AtomWriter& writer, const std::vector<Chunk>& chunks) {
    std::vector<std::size_t> changes;
    for (std::size_t i = 0; i < chunks.size(); ++i) {
        const bool same =
            i > 0 && chunks[i].samples == chunks[i - 1].samples && chunks[i].entry == chunks[i - 1].entry;
        if (!same) changes.push_back(i);
    }
    writer.Atom(Code("stsc"), [&] {
        writer.Put32(0);
        writer.Put32(static_cast<std::uint32_t>(changes.size()));
        for (const std::size_t i : changes) {
            writer.Put32(static_cast<std::uint32_t>(i + 1));
            writer.Put32(chunks[i].samples);
            writer.Put32(chunks[i].entry);
        }
    });
    const bool wide = std::any_of(chunks.begin(), chunks.end(), [](const Chunk& chunk) {
        return chunk.offset > std::numeric_limits<std::uint32_t>::max();
    });
    writer.Atom(wide ? Code("co64") : Code("stco"), [&] {
        writer.Put32(0);
        writer.Put32(static_cast<std::uint32_t>(chunks.size()));
        for (const Chunk& chunk : chunks) {
            if (wide)
                writer.Put64(chunk.offset);
            else
                writer.Put32(static_cast<std::uint32_t>(chunk.offset));
        }
    });
}

void PutMediaHeader(AtomWriter& writer, OSType media_type) {
    if (media_type == Code("soun")) {
        writer.Atom(Code("smhd"), [&] { writer.Zeros(8); });
        return;
    }
    writer.Atom(Code("gmhd"), [&] {
        writer.Atom(Code("gmin"), [&] {
            writer.Put32(0);
            writer.Put16(0x40);
            for (int i = 0; i < 3; ++i) writer.Put16(0x8000);
            writer.Zeros(4);
        });
        if (media_type == Code("text")) writer.Atom(Code("text"), [&] { PutMatrix(writer); });
    });
}

void PutReferences(AtomWriter& writer, const Placement& placement, const std::string& movie_path) {
    writer.Atom(Code("dinf"), [&] {
        writer.Atom(Code("dref"), [&] {
            writer.Put32(0);
            writer.Put32(static_cast<std::uint32_t>(placement.references.size()));
            for (const std::string& path : placement.references) {
                writer.Atom(Code("alis"), [&] {
                    writer.Put32(path.empty() ? kSelfContained : 0);
                    if (!path.empty()) writer.Put(MakeAlias(path, movie_path));
                });
            }
        });
    });
}

void PutMedia(AtomWriter& writer, const MediaRecord& media, const Placement& placement,
              const std::string& movie_path) {
    writer.Atom(Code("mdia"), [&] {
        writer.Atom(Code("mdhd"), [&] {
            writer.Put32(0);
            writer.Put32(media.created);
            writer.Put32(media.modified);
            writer.Put32(static_cast<std::uint32_t>(media.time_scale));
            writer.Put32(
                Limited(placement.runs.empty() ? media.samples->duration : placement.runs.back().End()));
            writer.Put16(static_cast<std::uint16_t>(media.language));
            writer.Put16(static_cast<std::uint16_t>(media.quality));
        });
        PutHandler(writer, Code("mhlr"), media.type, "Media Handler");
        writer.Atom(Code("minf"), [&] {
            PutMediaHeader(writer, media.type);
            PutHandler(writer, Code("dhlr"), Code("alis"), "Data Handler");
            PutReferences(writer, placement, movie_path);
            writer.Atom(Code("stbl"), [&] {
                PutDescriptions(writer, media, placement);
                PutTimes(writer, placement.runs);
                PutSizes(writer, placement.runs);
                PutChunks(writer, placement.chunks);
            });
        });
    });
}

void PutEdits(AtomWriter& writer, const TrackRecord& track) {
    const TimeValue lead_in = track.media->samples->lead_in;
    std::vector<std::array<std::uint32_t, 2>> edits;
    TimeValue end = 0;
    for (const Segment& segment : track.segments) {
        if (segment.start > end) edits.push_back({Limited(segment.start - end), 0xFFFF'FFFF});
        edits.push_back({Limited(segment.duration), Limited(segment.media_start + lead_in)});
        end = segment.End();
    }
    if (edits.empty()) return;
    writer.Atom(Code("edts"), [&] {
        writer.Atom(Code("elst"), [&] {
            writer.Put32(0);
            writer.Put32(static_cast<std::uint32_t>(edits.size()));
            for (const auto& [duration, media_time] : edits) {
                writer.Put32(duration);
                writer.Put32(media_time);
                writer.Put32(0x10000);
            }
        });
    });
}

void PutTrack(AtomWriter& writer, const TrackRecord& track, std::uint32_t id, const Placement& placement,
              const std::string& movie_path) {
    constexpr std::uint32_t kShownEverywhere = 0xE;
    writer.Atom(Code("trak"), [&] {
        writer.Atom(Code("tkhd"), [&] {
            writer.Put32(kShownEverywhere | (track.enabled ? 1 : 0));
            writer.Put32(track.created);
            writer.Put32(track.modified);
            writer.Put32(id);
            writer.Put32(0);
            writer.Put32(Limited(track.segments.empty() ? 0 : track.segments.back().End()));
            writer.Zeros(12);
            writer.Put16(static_cast<std::uint16_t>(track.volume));
            writer.Put16(0);
            PutMatrix(writer);
            writer.Put32(static_cast<std::uint32_t>(track.width));
            writer.Put32(static_cast<std::uint32_t>(track.height));
        });
        PutEdits(writer, track);
        PutMedia(writer, *track.media, placement, movie_path);
    });
}

} // namespace

OSErr WriteMovie(const MovieRecord& movie, StorageFile& file, ForeignSamples foreign) {
    std::vector<Placement> placements(movie.tracks.size());
    TimeValue duration = 0;
    for (std::size_t i = 0; i < movie.tracks.size(); ++i) {
        const TrackRecord& track = *movie.tracks[i];
        if (track.media == nullptr) continue;
        if (const OSErr code = Place(*track.media->samples, file, foreign, placements[i]); code != noErr)
            return code;
        if (!track.segments.empty()) duration = std::max(duration, track.segments.back().End());
    }
    AtomWriter writer;
    writer.Atom(Code("moov"), [&] {
        writer.Atom(Code("mvhd"), [&] {
            writer.Put32(0);
            writer.Put32(movie.created);
            writer.Put32(movie.modified);
            writer.Put32(static_cast<std::uint32_t>(movie.time_scale));
            writer.Put32(Limited(duration));
            writer.Put32(static_cast<std::uint32_t>(movie.preferred_rate));
            writer.Put16(static_cast<std::uint16_t>(movie.volume));
            writer.Zeros(10);
            PutMatrix(writer);
            writer.Zeros(24);
            writer.Put32(static_cast<std::uint32_t>(movie.tracks.size() + 1));
        });
        for (std::size_t i = 0; i < movie.tracks.size(); ++i)
            if (movie.tracks[i]->media != nullptr)
                PutTrack(writer, *movie.tracks[i], static_cast<std::uint32_t>(i + 1), placements[i],
                         file.Path());
    });
    return file.Finish(writer.Take());
}

} // namespace qt
