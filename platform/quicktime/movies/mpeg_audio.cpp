// MPEG audio files, layers I to III: frame headers, the encoder's note in the first frame, and where the
// frames lie. Nothing is decoded here.

#include "platform/quicktime/movies/importers.h"
#include "platform/quicktime/movies/sound_description.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

namespace qt {
namespace {

/// Bits a second in thousands: MPEG 1 layers I, II, III, then the lower rates' layer I and layers II and III.
constexpr std::array<std::array<std::uint16_t, 15>, 5> kBitRates = {{
    {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
}};
constexpr std::array<std::uint32_t, 3> kRates = {44100, 48000, 32000};

constexpr std::uint32_t kDecoderDelay = 529; ///< of layer III: frames that every decoder puts in front
constexpr std::size_t kHeader = 4;
constexpr std::uint64_t kLongestSearch = 1U << 17; ///< for the first frame, and across rubbish between two
constexpr std::uint64_t kBlock = 1U << 16;

struct FrameHeader {
    std::uint32_t bits = 0;
    std::uint32_t layer = 0;
    bool mpeg1 = false;
    std::uint32_t rate = 0;
    std::uint32_t channels = 0;
    std::uint32_t bit_rate = 0;
    std::uint32_t size = 0; ///< bytes
    std::uint32_t samples = 0;
};

std::optional<FrameHeader> ReadHeader(std::uint32_t bits) {
    const std::uint32_t version = bits >> 19 & 3; // 0: 2.5, 2: 2, 3: 1
    const std::uint32_t layer_bits = bits >> 17 & 3;
    const std::uint32_t rate_index = bits >> 12 & 15;
    const std::uint32_t frequency = bits >> 10 & 3;
    const bool is_frame = (bits & 0xFFE0'0000) == 0xFFE0'0000 && version != 1 && layer_bits != 0 &&
                          rate_index != 0 && rate_index != 15 && frequency != 3;
    if (!is_frame) return std::nullopt;
    FrameHeader header;
    header.bits = bits;
    header.layer = 4 - layer_bits;
    header.mpeg1 = version == 3;
    header.rate = kRates[frequency] >> (version == 3 ? 0 : version == 2 ? 1 : 2);
    header.channels = (bits >> 6 & 3) == 3 ? 1 : 2;
    const std::size_t row = header.mpeg1 ? header.layer - 1 : header.layer == 1 ? 3 : 4;
    header.bit_rate = kBitRates[row][rate_index] * 1000U;
    const std::uint32_t padding = bits >> 9 & 1;
    if (header.layer == 1) {
        header.samples = 384;
        header.size = (12 * header.bit_rate / header.rate + padding) * 4;
    } else {
        header.samples = header.layer == 3 && !header.mpeg1 ? 576 : 1152;
        header.size = header.samples / 8 * header.bit_rate / header.rate + padding;
    }
    if (header.size <= kHeader) return std::nullopt;
    return header;
}

/// Whether two frames can belong to one stream: version, layer and rate stay.
bool Continues(const FrameHeader& header, const FrameHeader& first) {
    constexpr std::uint32_t kFixed = 0xFFFE'0C00;
    return (header.bits & kFixed) == (first.bits & kFixed);
}

/// Headers at any place, read in blocks.
class HeaderSource {
public:
    explicit HeaderSource(DataSource& data) : data_(data) {}

    std::optional<FrameHeader> At(std::uint64_t offset) {
        if (offset < start_ || offset + kHeader > start_ + filled_) {
            block_.resize(kBlock);
            start_ = offset;
            filled_ = data_.Read(offset, block_);
        }
        if (offset + kHeader > start_ + filled_) return std::nullopt;
        return ReadHeader(BigEndian32(block_, static_cast<std::size_t>(offset - start_)));
    }

    /// Frames in a row from `offset` on, `most` of them or fewer; whether the data ends with them.
    struct Row {
        int frames = 0;
        bool is_at_end = false;
    };
    Row RowFrom(std::uint64_t offset, int most) {
        Row row;
        for (auto header = At(offset), first = header; header.has_value() && Continues(*header, *first);
             header = At(offset)) {
            ++row.frames;
            offset += header->size;
            if (row.frames == most) break;
        }
        row.is_at_end = offset == data_.GetSize() || IsLastTag(offset) ||
                        (row.frames > 1 && offset + kHeader > data_.GetSize());
        return row;
    }

    /// The first frame from `offset` on that others follow: `frames` in all, or fewer up to the data's end.
    std::optional<std::uint64_t> Find(std::uint64_t offset, int frames) {
        const std::uint64_t limit = std::min(data_.GetSize(), offset + kLongestSearch);
        for (; offset + kHeader <= limit; ++offset) {
            const Row row = RowFrom(offset, frames);
            if (row.frames == frames || (row.frames > 0 && row.is_at_end)) return offset;
        }
        return std::nullopt;
    }

private:
    /// The tag of the first ID3 version, behind all frames.
    bool IsLastTag(std::uint64_t offset) {
        constexpr std::uint64_t kTagSize = 128;
        std::array<std::byte, 3> mark{};
        return offset + kTagSize == data_.GetSize() && data_.Read(offset, mark) == mark.size() &&
               BigEndian(mark, 0, 3) == 0x544147; // "TAG"
    }

    DataSource& data_;
    Bytes block_;
    std::uint64_t start_ = 0;
    std::size_t filled_ = 0;
};

/// Where sound begins behind the tags in front.
std::uint64_t SkipTags(DataSource& data) {
    std::uint64_t offset = 0;
    for (int i = 0; i < 8; ++i) {
        std::array<std::byte, 10> header{};
        if (data.Read(offset, header) != header.size() || BigEndian(header, 0, 3) != 0x494433) break; // "ID3"
        std::uint64_t size = 0;
        for (std::size_t at = 6; at < 10; ++at) size = size << 7 | (BigEndian(header, at, 1) & 0x7F);
        const bool footer = (BigEndian(header, 5, 1) & 0x10) != 0;
        offset += 10 + size + (footer ? 10 : 0);
    }
    return offset;
}

/// What an encoder writes into a first frame that holds no sound.
struct EncoderNote {
    bool present = false;
    std::uint32_t frames = 0; ///< that follow; 0: not said
    std::uint32_t bytes = 0;  ///< of all frames, this one included; 0: not said
    std::uint32_t delay = 0;  ///< samples before the sound
    std::uint32_t padding = 0;
    bool gapless = false;
    bool constant = false; ///< every frame has the first one's bit rate
};

EncoderNote ReadNote(DataSource& data, std::uint64_t offset, const FrameHeader& header) {
    EncoderNote note;
    if (header.layer != 3) return note;
    Bytes frame(header.size);
    if (data.Read(offset, frame) != frame.size()) return note;
    const std::size_t side =
        header.mpeg1 ? (header.channels == 1 ? 17 : 32) : (header.channels == 1 ? 9 : 17);
    std::size_t at = kHeader + side;
    const OSType magic = BigEndian32(frame, at);
    if (magic == Code("Xing") || magic == Code("Info")) {
        note.present = true;
        note.constant = magic == Code("Info");
        const std::uint32_t fields = BigEndian32(frame, at + 4);
        at += 8;
        const auto field = [&](std::uint32_t flag, std::size_t size) {
            const std::size_t from = at;
            if ((fields & flag) != 0) at += size;
            return (fields & flag) != 0 ? BigEndian32(frame, from) : 0;
        };
        note.frames = field(1, 4);
        note.bytes = field(2, 4);
        field(4, 100);
        field(8, 4);
        const auto gap = static_cast<std::uint32_t>(BigEndian(frame, at + 21, 3));
        note.gapless = BigEndian32(frame, at) != 0 && gap != 0;
        note.delay = gap >> 12;
        note.padding = gap & 0xFFF;
    } else if (BigEndian32(frame, kHeader + 32) == Code("VBRI")) {
        note.present = true;
        note.bytes = BigEndian32(frame, kHeader + 32 + 10);
        note.frames = BigEndian32(frame, kHeader + 32 + 14);
    }
    return note;
}

struct MpegStream {
    FrameHeader first;
    EncoderNote note;
    std::uint64_t first_frame = 0;    ///< that holds sound
    std::uint32_t bit_rate = 0;       ///< of that frame; some encoders give their note another one
    bool is_behind_something = false; ///< that is no tag
};

std::optional<MpegStream> FindStream(DataSource& data) {
    constexpr int kConvincing = 4; // two stand in many files by chance, and one at the end of some
    HeaderSource headers(data);
    const std::uint64_t start = SkipTags(data);
    const auto offset = headers.Find(start, kConvincing);
    if (!offset.has_value()) return std::nullopt;
    MpegStream stream;
    stream.is_behind_something = *offset != start;
    if (stream.is_behind_something && headers.RowFrom(*offset, kConvincing).frames < kConvincing)
        return std::nullopt;
    stream.first = *headers.At(*offset);
    stream.note = ReadNote(data, *offset, stream.first);
    stream.first_frame = *offset + (stream.note.present ? stream.first.size : 0);
    stream.bit_rate = headers.At(stream.first_frame).value_or(stream.first).bit_rate;
    return stream;
}

/// Walks the frames to the end of the stream; whether all have the first one's bit rate.
bool FindFrames(DataSource& data, const MpegStream& stream, MediaSamples& samples) {
    HeaderSource headers(data);
    TimeValue time = 0;
    bool constant = true;
    for (std::uint64_t offset = stream.first_frame;;) {
        auto header = headers.At(offset);
        if (!header.has_value() || !Continues(*header, stream.first)) {
            const auto next = headers.Find(offset, 2);
            if (!next.has_value()) break;
            offset = *next;
            header = headers.At(offset);
            if (!Continues(*header, stream.first)) break;
        }
        if (offset + header->size > data.GetSize()) break;
        constant = constant && header->bit_rate == stream.bit_rate;
        SampleRun run;
        run.start = time;
        run.offset = offset;
        run.count = 1;
        run.duration = header->samples;
        run.size = header->size;
        samples.Append(run);
        time += header->samples;
        offset += header->size;
    }
    return constant;
}

/// The note's word is taken when as much data is there as it says.
bool NoteHolds(DataSource& data, const MpegStream& stream) {
    const std::uint64_t there = data.GetSize() - std::min(data.GetSize(), stream.first_frame);
    const std::uint64_t smallest = kHeader + 8;
    const bool bytes_there = stream.note.bytes == 0 || stream.note.bytes <= there + stream.first.size;
    return stream.note.frames > 0 && bytes_there && stream.note.frames <= there / smallest;
}

OSType FormatOf(std::uint32_t layer) {
    return layer == 3 ? Code(".mp3") : layer == 2 ? Code(".mp2") : Code(".mp1");
}

} // namespace

Imported ImportMpegAudio(const ImportSource& source) {
    const auto stream = FindStream(*source.data);
    if (!stream.has_value()) return {};
    if (stream->is_behind_something) { // files of many kinds hold such frames, or what looks like them
        Imported other = ImportOther(source);
        const bool is_mpeg_audio = other.importer == Code("MP3 ") || other.importer == Code("MPGA");
        if (other.code == noErr && !is_mpeg_audio) return other;
    }
    auto samples = std::make_shared<MediaSamples>();
    TimeValue length = 0;
    bool constant = stream->note.constant;
    if (NoteHolds(*source.data, *stream)) {
        length = TimeValue{stream->note.frames} * stream->first.samples;
        samples->find_runs = [data = source.data, stream = *stream](MediaSamples& found) {
            FindFrames(*data, stream, found);
            return found.runs.empty() ? invalidSampleTable : noErr;
        };
    } else {
        constant = FindFrames(*source.data, *stream, *samples);
        length = samples->runs.empty() ? 0 : samples->runs.back().End();
    }
    samples->duration = length;
    if (stream->note.gapless) {
        samples->lead_in = stream->note.delay + kDecoderDelay;
        // The padding went with the end of a file that was cut.
        const bool is_cut = length < TimeValue{stream->note.frames} * stream->first.samples;
        const TimeValue sound = length - stream->note.delay - (is_cut ? kDecoderDelay : stream->note.padding);
        samples->duration = std::clamp<TimeValue>(
            sound, 0, std::max<TimeValue>(0, length - samples->lead_in + kDecoderDelay));
    }
    CompressedSound sound;
    sound.data_format = FormatOf(stream->first.layer);
    sound.channels = stream->first.channels;
    sound.rate = stream->first.rate;
    sound.frames_per_packet = stream->first.samples;
    sound.wave_tag = stream->first.layer == 3 ? 0x55 : 0x50;
    const double seconds = static_cast<double>(length) / stream->first.rate;
    const auto bytes =
        static_cast<double>(source.data->GetSize() - std::min(source.data->GetSize(), stream->first_frame));
    sound.average_bytes_per_second = constant || seconds <= 0
                                         ? stream->bit_rate / 8
                                         : static_cast<std::uint32_t>(std::min(bytes / seconds, 1e9));
    samples->descriptions.push_back(DescribeCompressed(sound));
    const OSType importer = stream->first.layer == 3 ? Code("MP3 ") : Code("MPGA");
    return {noErr, importer, MovieOfSound(source, stream->first.rate, std::move(samples))};
}

} // namespace qt
