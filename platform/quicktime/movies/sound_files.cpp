// Sound files that libsndfile knows. Of uncompressed ones it only reads the header: their samples are taken
// from the file directly.

#include "platform/quicktime/modules/sndfile_library.h"
#include "platform/quicktime/movies/importers.h"
#include "platform/quicktime/movies/riff_chunks.h"
#include "platform/quicktime/movies/sound_description.h"

#include <algorithm>
#include <array>
#include <optional>

namespace qt {
namespace {

constexpr std::size_t kMostOrdered = 8; ///< channels whose order is known

struct SndfileCloser {
    void operator()(SNDFILE* file) const { g_sndfile->close(file); }
};

/// A data source as the library reads files. It also tells where the samples begin: the place that the
/// library goes to for the first one.
class SoundFile {
public:
    explicit SoundFile(std::shared_ptr<DataSource> data) : data_(std::move(data)) {}

    /// From the start, whether it was open before or not.
    bool Open() {
        static SF_VIRTUAL_IO operations = {Length, Seek, Read, Write, Tell};
        if (!g_sndfile.Load()) return false;
        file_.reset();
        position_ = 0;
        info_ = {};
        file_.reset(g_sndfile->open_virtual(&operations, SFM_READ, &info_, this));
        return file_ != nullptr;
    }

    [[nodiscard]] SNDFILE* File() const { return file_.get(); }
    [[nodiscard]] const SF_INFO& Info() const { return info_; }

    [[nodiscard]] std::optional<std::uint64_t> FirstSample() {
        if (g_sndfile->seek(file_.get(), 0, SEEK_SET) != 0) return std::nullopt;
        return position_;
    }

private:
    static SoundFile& Self(void* user) { return *static_cast<SoundFile*>(user); }
    static sf_count_t Length(void* user) { return static_cast<sf_count_t>(Self(user).data_->GetSize()); }
    static sf_count_t Tell(void* user) { return static_cast<sf_count_t>(Self(user).position_); }
    static sf_count_t Write(const void*, sf_count_t, void*) { return 0; }

    static sf_count_t Seek(sf_count_t offset, int whence, void* user) {
        SoundFile& self = Self(user);
        if (whence == SEEK_CUR) offset += static_cast<sf_count_t>(self.position_);
        if (whence == SEEK_END) offset += static_cast<sf_count_t>(self.data_->GetSize());
        if (offset < 0) return -1;
        self.position_ = static_cast<std::uint64_t>(offset);
        return offset;
    }

    static sf_count_t Read(void* buffer, sf_count_t count, void* user) {
        SoundFile& self = Self(user);
        if (count <= 0) return 0;
        const std::size_t got = self.data_->Read(
            self.position_, {static_cast<std::byte*>(buffer), static_cast<std::size_t>(count)});
        self.position_ += got;
        return static_cast<sf_count_t>(got);
    }

    std::shared_ptr<DataSource> data_;
    std::uint64_t position_ = 0;
    SF_INFO info_ = {};
    std::unique_ptr<SNDFILE, SndfileCloser> file_;
};

/// Which of a frame's channels comes first, second…; empty when they stand as they are to.
using ChannelOrder = std::span<const std::uint8_t>;

/// Formats that decode to 16 bits come as such, others as floats; only floats are put in another order.
class SoundFileReader final : public FrameReader {
public:
    SoundFileReader(std::unique_ptr<SoundFile> file, SampleEncoding encoding, ChannelOrder order)
        : file_(std::move(file)), order_(order) {
        const SF_INFO& info = file_->Info();
        layout_ = {encoding, false, static_cast<std::uint32_t>(info.channels),
                   static_cast<std::uint32_t>(info.samplerate)};
    }

    FramesRead Read(std::int64_t start, std::span<std::byte> frames) override {
        if (start != position_ && !GoTo(start)) return {noErr, 0};
        return {noErr, Decode(frames)};
    }

private:
    bool GoTo(std::int64_t start) {
        if (file_->Info().seekable == 0) return DecodeUpTo(start);
        if (g_sndfile->seek(file_->File(), start, SEEK_SET) != start) return false;
        position_ = start;
        return true;
    }

    // For codecs that the library only reads in order, as GSM.
    bool DecodeUpTo(std::int64_t start) {
        constexpr std::int64_t kBlock = 4096; // frames
        if (start < position_) {
            position_ = 0;
            if (!file_->Open()) return false;
        }
        skipped_.resize(static_cast<std::size_t>(kBlock) * layout_.FrameBytes());
        while (position_ < start) {
            const auto count = static_cast<std::size_t>(std::min(kBlock, start - position_));
            if (Decode(std::span(skipped_).first(count * layout_.FrameBytes())) == 0) return false;
        }
        return true;
    }

    // The frames that follow; how many there were.
    std::int64_t Decode(std::span<std::byte> frames) {
        if (file_->File() == nullptr) return 0;
        const auto wanted = static_cast<sf_count_t>(frames.size() / layout_.FrameBytes());
        const sf_count_t got =
            layout_.encoding == SampleEncoding::kSigned16
                ? g_sndfile->readf_short(file_->File(), reinterpret_cast<short*>(frames.data()), wanted)
                : g_sndfile->readf_float(file_->File(), reinterpret_cast<float*>(frames.data()), wanted);
        position_ += std::max<sf_count_t>(got, 0);
        if (!order_.empty())
            Reorder({reinterpret_cast<float*>(frames.data()), frames.size() / sizeof(float)});
        return std::max<sf_count_t>(got, 0);
    }

    void Reorder(std::span<float> samples) const {
        std::array<float, kMostOrdered> frame{};
        for (; samples.size() >= order_.size(); samples = samples.subspan(order_.size())) {
            std::copy_n(samples.begin(), order_.size(), frame.begin());
            std::ranges::transform(order_, samples.begin(), [&](std::uint8_t from) { return frame[from]; });
        }
    }

    std::unique_ptr<SoundFile> file_;
    ChannelOrder order_;
    std::int64_t position_ = 0;
    Bytes skipped_;
};

struct RawEncoding {
    int subtype;
    SampleEncoding encoding;
};
constexpr std::array<RawEncoding, 9> kRaw = {{
    {SF_FORMAT_PCM_S8, SampleEncoding::kSigned8},
    {SF_FORMAT_PCM_U8, SampleEncoding::kUnsigned8},
    {SF_FORMAT_PCM_16, SampleEncoding::kSigned16},
    {SF_FORMAT_PCM_24, SampleEncoding::kSigned24},
    {SF_FORMAT_PCM_32, SampleEncoding::kSigned32},
    {SF_FORMAT_FLOAT, SampleEncoding::kFloat32},
    {SF_FORMAT_DOUBLE, SampleEncoding::kFloat64},
    {SF_FORMAT_ULAW, SampleEncoding::kMuLaw},
    {SF_FORMAT_ALAW, SampleEncoding::kALaw},
}};

struct CodedSubtype {
    int subtype;
    OSType in_wave;
    OSType elsewhere;
    std::uint16_t wave_tag;
    std::uint32_t frames_per_packet;
    std::uint8_t alac_bits = 0;
};
constexpr OSType kNoCode = 0;
constexpr std::array<CodedSubtype, 13> kCoded = {{
    {SF_FORMAT_IMA_ADPCM, Code("ms\0\x11"), Code("ima4"), 0x11, 64},
    {SF_FORMAT_MS_ADPCM, Code("ms\0\x02"), kNoCode, 0x02, 500},
    {SF_FORMAT_GSM610, Code("ms\0\x31"), Code("agsm"), 0x31, 160},
    {SF_FORMAT_VORBIS, kNoCode, Code("vorb"), 0x566F, 1024},
    {SF_FORMAT_OPUS, kNoCode, Code("Opus"), 0x704F, 960},
    {SF_FORMAT_MPEG_LAYER_I, kNoCode, Code(".mp1"), 0x50, 384},
    {SF_FORMAT_MPEG_LAYER_II, kNoCode, Code(".mp2"), 0x50, 1152},
    {SF_FORMAT_MPEG_LAYER_III, kNoCode, Code(".mp3"), 0x55, 1152},
    {SF_FORMAT_ALAC_16, kNoCode, Code("alac"), 0x6C61, 4096, 16},
    {SF_FORMAT_ALAC_20, kNoCode, Code("alac"), 0x6C61, 4096, 20},
    {SF_FORMAT_ALAC_24, kNoCode, Code("alac"), 0x6C61, 4096, 24},
    {SF_FORMAT_ALAC_32, kNoCode, Code("alac"), 0x6C61, 4096, 32},
    {SF_FORMAT_G721_32, Code("ms\0\x40"), Code("g721"), 0x40, 8},
}};

struct FileType {
    int major;
    OSType importer;
    bool big_endian; ///< unless the header says otherwise
};
constexpr std::array<FileType, 8> kFileTypes = {{
    {SF_FORMAT_WAV, Code("WAVE"), false},
    {SF_FORMAT_WAVEX, Code("WAVE"), false},
    {SF_FORMAT_RF64, Code("WAVE"), false},
    {SF_FORMAT_W64, Code("W64 "), false},
    {SF_FORMAT_AIFF, Code("AIFF"), true},
    {SF_FORMAT_AU, Code("ULAW"), true},
    {SF_FORMAT_CAF, Code("caff"), true},
    {SF_FORMAT_FLAC, Code("FLAC"), false},
}};
constexpr FileType kOgg = {SF_FORMAT_OGG, Code("Ogg "), false};

const FileType* FindType(int format) {
    if ((format & SF_FORMAT_TYPEMASK) == kOgg.major) return &kOgg;
    const auto* row = std::find_if(kFileTypes.begin(), kFileTypes.end(), [&](const FileType& type) {
        return type.major == (format & SF_FORMAT_TYPEMASK);
    });
    return row != kFileTypes.end() ? row : nullptr;
}

std::optional<PcmLayout> RawLayout(const SF_INFO& info, const FileType& type) {
    if (type.major == SF_FORMAT_FLAC) return std::nullopt;
    for (const RawEncoding& raw : kRaw) {
        if (raw.subtype != (info.format & SF_FORMAT_SUBMASK)) continue;
        const int order = info.format & SF_FORMAT_ENDMASK;
        const bool big = order == SF_ENDIAN_BIG || (order != SF_ENDIAN_LITTLE && type.big_endian);
        PcmLayout layout = {raw.encoding, big, static_cast<std::uint32_t>(info.channels),
                            static_cast<std::uint32_t>(info.samplerate)};
        layout.big_endian = big && layout.SampleBytes() > 1;
        return layout;
    }
    return std::nullopt;
}

/// Bytes per second as the format chunk of a WAVE file states them; 0 when it doesn't.
std::uint32_t StatedBytesPerSecond(DataSource& data) {
    constexpr std::size_t kAverage = 8; // its place in the chunk
    std::array<std::byte, kAverage + 4> format{};
    const auto chunk = FindRiffChunk(data, Code("fmt "));
    if (!chunk || data.Read(chunk->offset, format) != format.size()) return 0;
    return chunk->big_endian ? BigEndian32(format, kAverage) : LittleEndian32(format, kAverage);
}

/// Bytes of the file's sound. Of other files than FLAC, whose pictures and tags come first, all are counted.
std::uint64_t SoundBytes(DataSource& data, const FileType& type) {
    constexpr int kMostBlocks = 1000; // a file of empty ones shall not take minutes
    const std::uint64_t size = data.GetSize();
    if (type.major != SF_FORMAT_FLAC) return size;
    std::array<std::byte, 4> block{};
    std::uint64_t offset = block.size();
    for (int i = 0; i < kMostBlocks && data.Read(offset, block) == block.size(); ++i) {
        offset += block.size() + BigEndian(block, 1, 3);
        if ((block[0] & std::byte{0x80}) != std::byte{0}) break; // the last one
    }
    return size - std::min(size, offset);
}

CompressedSound CodedSound(const SF_INFO& info, const FileType& type, DataSource& data) {
    const bool in_wave = type.importer == Code("WAVE") || type.importer == Code("W64 ");
    CompressedSound sound;
    sound.data_format = type.major == SF_FORMAT_FLAC ? Code("fLaC") : Code("snd ");
    sound.frames_per_packet = type.major == SF_FORMAT_FLAC ? 4096 : 1;
    sound.wave_tag = type.major == SF_FORMAT_FLAC ? 0xF1AC : 0;
    for (const CodedSubtype& coded : kCoded) {
        if (coded.subtype != (info.format & SF_FORMAT_SUBMASK)) continue;
        sound.data_format = in_wave && coded.in_wave != kNoCode ? coded.in_wave : coded.elsewhere;
        sound.frames_per_packet = coded.frames_per_packet;
        sound.wave_tag = coded.wave_tag;
        sound.alac_bits = coded.alac_bits;
    }
    sound.channels = static_cast<std::uint32_t>(info.channels);
    sound.rate = static_cast<std::uint32_t>(info.samplerate);
    if (type.importer == Code("WAVE")) sound.average_bytes_per_second = StatedBytesPerSecond(data);
    if (sound.average_bytes_per_second == 0 && info.frames > 0)
        sound.average_bytes_per_second = static_cast<std::uint32_t>(
            std::min<double>(0xFFFFFFFF, static_cast<double>(SoundBytes(data, type)) * info.samplerate /
                                             static_cast<double>(info.frames)));
    return sound;
}

bool DecodesTo16Bits(int format) {
    switch (format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_16:
    case SF_FORMAT_IMA_ADPCM:
    case SF_FORMAT_MS_ADPCM:
    case SF_FORMAT_GSM610:
    case SF_FORMAT_ALAC_16:
    case SF_FORMAT_G721_32: return true;
    default: return false;
    }
}

/// First bytes of the files that are this library's.
bool LooksLikeSoundFile(DataSource& data) {
    std::array<std::byte, 4> start{};
    if (data.Read(0, start) != start.size()) return false;
    constexpr std::array<OSType, 9> kStarts = {Code("RIFF"), Code("RIFX"), Code("RF64"),
                                               Code("FORM"), Code(".snd"), Code("dns."),
                                               Code("caff"), Code("fLaC"), Code("OggS")};
    const OSType magic = BigEndian32(start, 0);
    return magic == Code("riff") || std::find(kStarts.begin(), kStarts.end(), magic) != kStarts.end();
}

/// Vorbis has the centre between left and right and the low frequencies last, and the library leaves them
/// there; everybody else, and this system, has them as WAVE files do. Opus does as Vorbis, unless its header
/// says that the channels are no speakers.
ChannelOrder OrderOf(const SF_INFO& info, DataSource& data) {
    constexpr std::uint64_t kOpusMapping = 46; // behind the header of the file's first page
    static constexpr std::array<std::array<std::uint8_t, kMostOrdered>, kMostOrdered + 1> kOrders = {
        {{},
         {},
         {},
         {0, 2, 1},
         {},
         {0, 2, 1, 3, 4},
         {0, 2, 1, 5, 3, 4},
         {0, 2, 1, 6, 5, 3, 4},
         {0, 2, 1, 7, 5, 6, 3, 4}}};
    const int codec = info.format & SF_FORMAT_SUBMASK;
    const auto channels = static_cast<std::size_t>(info.channels);
    std::array<std::byte, 1> mapping{};
    const bool speakers =
        codec == SF_FORMAT_VORBIS ||
        (codec == SF_FORMAT_OPUS && data.Read(kOpusMapping, mapping) == 1 && mapping[0] == std::byte{1});
    if (!speakers || channels > kMostOrdered || kOrders[channels][1] == 0) return {};
    return ChannelOrder(kOrders[channels]).first(channels);
}

OpenedReader OpenSoundFileReader(const std::shared_ptr<DataSource>& data) {
    auto file = std::make_unique<SoundFile>(data);
    if (!file->Open()) return {badFileFormat, nullptr};
    const auto encoding =
        DecodesTo16Bits(file->Info().format) ? SampleEncoding::kSigned16 : SampleEncoding::kFloat32;
    const ChannelOrder order = OrderOf(file->Info(), *data);
    return {noErr, std::make_unique<SoundFileReader>(std::move(file), encoding, order)};
}

/// The library takes all samples of an extensible Wave64 file for integers, whatever their sub-format says.
bool IsMisread(DataSource& data, int format) {
    constexpr std::uint64_t kFormat = 64; // its fields, in the chunk that all writers put first
    constexpr std::uint32_t kExtensible = 0xFFFE;
    constexpr std::uint32_t kPcm = 1;
    std::array<std::byte, 28> fields{};
    return (format & SF_FORMAT_TYPEMASK) == SF_FORMAT_W64 && data.Read(kFormat, fields) == fields.size() &&
           (LittleEndian32(fields, 0) & 0xFFFF) == kExtensible && LittleEndian32(fields, 24) != kPcm;
}

/// Frames of the file. Of GSM in WAVE files, the library takes the byte behind an odd number of blocks for
/// one more, which would be noise.
TimeValue FrameCount(const SF_INFO& info, DataSource& data) {
    constexpr std::uint64_t kBlock = 65; // bytes
    constexpr TimeValue kBlockFrames = 320;
    if ((info.format & SF_FORMAT_SUBMASK) != SF_FORMAT_GSM610) return info.frames;
    const auto chunk = FindRiffChunk(data, Code("data"));
    if (!chunk.has_value() || chunk->size < kBlock) return info.frames;
    return std::min<TimeValue>(info.frames, static_cast<TimeValue>(chunk->size / kBlock) * kBlockFrames);
}

bool IsAifc(DataSource& data) {
    std::array<std::byte, 12> start{};
    return data.Read(0, start) == start.size() && BigEndian32(start, 8) == Code("AIFC");
}

} // namespace

Imported ImportSoundFile(const ImportSource& source) {
    if (!LooksLikeSoundFile(*source.data)) return {};
    SoundFile file(source.data);
    const FileType* type = file.Open() ? FindType(file.Info().format) : nullptr;
    const SF_INFO& info = file.Info();
    const bool usable = type != nullptr && info.channels > 0 && info.channels <= 256 && info.samplerate > 0 &&
                        info.frames >= 0 && !IsMisread(*source.data, info.format);
    const auto layout = usable ? RawLayout(info, *type) : std::nullopt;
    const std::uint64_t size = source.data->GetSize();
    // A sound inside that this library does not know, or FLAC from a stream: its length is for others to
    // find.
    if (!usable || (!layout.has_value() && !CanHoldFrames(size, info.frames))) {
        Imported other = ImportOther(source);
        if (other.code == noMovieFound) other.code = badFileFormat;
        return other;
    }
    auto samples = std::make_shared<MediaSamples>();
    samples->duration = FrameCount(info, *source.data);
    const auto first = layout.has_value() ? file.FirstSample() : std::nullopt;
    if (first.has_value()) {
        const std::uint64_t there = *first < size ? (size - *first) / layout->FrameBytes() : 0;
        SampleRun run;
        run.offset = *first;
        run.count = std::min(static_cast<std::uint64_t>(info.frames), there);
        run.size = layout->FrameBytes();
        samples->Append(run);
        samples->duration = static_cast<TimeValue>(run.count);
        samples->descriptions.push_back(DescribePcm(*layout));
    } else {
        samples->descriptions.push_back(DescribeCompressed(CodedSound(info, *type, *source.data)));
        samples->open_decoder = [data = source.data] { return OpenSoundFileReader(data); };
        AddWholeFileRun(source, *samples);
    }
    OSType importer = type->importer;
    if (type->major == SF_FORMAT_AIFF && IsAifc(*source.data)) importer = Code("AIFC");
    return {noErr, importer,
            MovieOfSound(source, static_cast<std::uint32_t>(info.samplerate), std::move(samples))};
}

} // namespace qt
