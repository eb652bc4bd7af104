#include "platform/quicktime/movies/sample_tables.h"

#include "platform/quicktime/movies/sound_description.h"

#include <algorithm>
#include <limits>

namespace qt {
namespace {

/// Entries of equal size behind version, flags and their number; never more than there are bytes for.
struct Table {
    std::span<const std::byte> entries;
    std::size_t count = 0;
};

Table FindTable(std::span<const std::byte> atoms, OSType type, std::size_t entry_size) {
    const auto data = FindAtom(atoms, type);
    Table table;
    table.entries = Tail(data, 8);
    table.count = std::min<std::size_t>(BigEndian32(data, 4), table.entries.size() / entry_size);
    return table;
}

/// Durations of the samples, in order.
class Times {
public:
    explicit Times(std::span<const std::byte> atoms) : table_(FindTable(atoms, Code("stts"), 8)) {}

    /// How many of the next samples have the same duration (at most `wanted`), and which.
    std::uint64_t Take(std::uint64_t wanted, std::uint32_t& duration) {
        while (left_ == 0 && next_ < table_.count) {
            left_ = BigEndian32(table_.entries, 8 * next_);
            duration_ = BigEndian32(table_.entries, 8 * next_ + 4);
            ++next_;
        }
        duration = duration_;
        if (left_ == 0) return wanted; // a table that is too short: the last duration holds on
        const std::uint64_t taken = std::min(wanted, left_);
        left_ -= taken;
        return taken;
    }

    /// The duration of the first sample.
    [[nodiscard]] std::uint32_t First() const { return BigEndian32(table_.entries, 4); }

private:
    Table table_;
    std::size_t next_ = 0;
    std::uint64_t left_ = 0;
    std::uint32_t duration_ = 1;
};

/// Sizes of the samples, by index.
class Sizes {
public:
    explicit Sizes(std::span<const std::byte> atoms) {
        const auto plain = FindAtom(atoms, Code("stsz"));
        if (!plain.empty()) {
            all_ = BigEndian32(plain, 4);
            Set(plain, 32);
        } else {
            const auto compact = FindAtom(atoms, Code("stz2"));
            Set(compact, static_cast<std::size_t>(BigEndian(compact, 7, 1)));
        }
    }

    [[nodiscard]] bool Alike() const { return all_ != 0; }
    [[nodiscard]] std::uint64_t Count() const { return count_; }
    [[nodiscard]] std::uint32_t At(std::uint64_t index) const {
        if (all_ != 0) return all_;
        const auto position = static_cast<std::size_t>(index);
        if (bits_ == 4) {
            const auto pair = static_cast<std::uint32_t>(BigEndian(entries_, position / 2, 1));
            return position % 2 == 0 ? pair >> 4 : pair & 15;
        }
        return static_cast<std::uint32_t>(BigEndian(entries_, position * bits_ / 8, bits_ / 8));
    }

private:
    void Set(std::span<const std::byte> data, std::size_t bits) {
        bits_ = bits == 4 || bits == 8 || bits == 16 ? bits : 32;
        entries_ = Tail(data, 12);
        count_ = BigEndian32(data, 8);
        if (all_ == 0) count_ = std::min<std::uint64_t>(count_, entries_.size() * 8 / bits_);
    }

    std::span<const std::byte> entries_;
    std::size_t bits_ = 32;
    std::uint64_t count_ = 0;
    std::uint32_t all_ = 0;
};

/// How the samples of a description are counted.
struct Packing {
    std::uint32_t frames = 0; ///< of a packet of fixed size; 0: the tables say it sample by sample
    std::uint32_t bytes = 0;
};

Packing PackingOf(std::span<const std::byte> description, std::uint32_t first_duration) {
    if (const auto layout = LayoutOf(description); layout.has_value()) return {1, layout->FrameBytes()};
    const auto format = ReadSoundFormat(description);
    const bool counted_in_frames = format.has_value() && first_duration == 1 &&
                                   format->compression_id != -2 && format->bytes_per_packet > 0 &&
                                   format->frames_per_packet > 1;
    return counted_in_frames ? Packing{format->frames_per_packet, format->bytes_per_packet} : Packing{};
}

/// Collects the runs of one table.
class RunBuilder {
public:
    RunBuilder(MediaSamples& samples, Times times, const Sizes& sizes)
        : samples_(samples), times_(times), sizes_(sizes) {
        for (const SampleSource& source : samples.sources)
            bytes_left_ +=
                source.data != nullptr ? source.data->GetSize() : std::numeric_limits<std::uint32_t>::max();
    }

    /// The samples of one chunk; false when the table should not be read further.
    bool AddChunk(SampleRun run, std::uint64_t count, const Packing& packing) {
        if (packing.frames > 0) {
            run.count = count / packing.frames;
            run.size = packing.bytes;
            run.duration = packing.frames;
            next_sample_ += count;
            return Add(run, run.offset);
        }
        std::uint64_t offset = run.offset;
        while (count > 0 && next_sample_ < sizes_.Count()) {
            const std::uint64_t wanted = sizes_.Alike() ? std::min(count, sizes_.Count() - next_sample_) : 1;
            run.count = times_.Take(wanted, run.duration);
            run.size = sizes_.At(next_sample_);
            next_sample_ += run.count;
            count -= run.count;
            if (!Add(run, offset)) return false;
        }
        return count == 0;
    }

    [[nodiscard]] TimeValue End() const { return end_; }

private:
    bool Add(SampleRun run, std::uint64_t& offset) {
        const auto& source = samples_.sources[run.source].data;
        run.start = end_;
        run.offset = offset;
        const std::uint64_t claimed = run.count;
        if (run.size > 0 && source != nullptr) {
            const std::uint64_t there = offset < source->GetSize() ? source->GetSize() - offset : 0;
            run.count = std::min({run.count, there / run.size, bytes_left_ / run.size});
        }
        constexpr TimeValue kLongest = std::numeric_limits<TimeValue>::max() / 4;
        if (run.duration > 0 && run.count > static_cast<std::uint64_t>(kLongest - end_) / run.duration)
            return false;
        bytes_left_ -= std::min(bytes_left_, run.count * run.size);
        if (run.size > 0 && run.duration > 0) samples_.Append(run);
        end_ = run.End();
        offset += run.count * run.size;
        return run.count == claimed;
    }

    MediaSamples& samples_;
    Times times_;
    const Sizes& sizes_;
    TimeValue end_ = 0;
    std::uint64_t next_sample_ = 0;
    std::uint64_t bytes_left_ = 0;
};

} // namespace

void ReadSampleTable(std::span<const std::byte> table, OSType media_type,
                     const DescriptionReferences& references, MediaSamples& samples) {
    const bool wide = !FindAtom(table, Code("co64")).empty();
    const Table offsets = FindTable(table, wide ? Code("co64") : Code("stco"), wide ? 8 : 4);
    const Table map = FindTable(table, Code("stsc"), 12);
    const Times times(table);
    const Sizes sizes(table);
    std::vector<Packing> packings;
    for (const Bytes& description : samples.descriptions)
        packings.push_back(media_type == Code("soun") ? PackingOf(description, times.First()) : Packing{});
    RunBuilder builder(samples, times, sizes);
    for (std::size_t chunk = 0, row = 0; chunk < offsets.count && map.count > 0; ++chunk) {
        while (row + 1 < map.count && BigEndian32(map.entries, 12 * (row + 1)) <= chunk + 1) ++row;
        const std::size_t description = std::size_t{BigEndian32(map.entries, 12 * row + 8)} - 1;
        if (description >= packings.size()) break;
        const std::size_t source = std::size_t{references[description]} - 1;
        if (source >= samples.sources.size()) break;
        SampleRun run;
        run.offset = BigEndian(offsets.entries, chunk * (wide ? 8 : 4), wide ? 8 : 4);
        run.description = static_cast<std::uint16_t>(description);
        run.source = static_cast<std::uint16_t>(source);
        if (!builder.AddChunk(run, BigEndian32(map.entries, 12 * row + 4), packings[description])) break;
    }
    samples.duration = builder.End();
}

} // namespace qt
