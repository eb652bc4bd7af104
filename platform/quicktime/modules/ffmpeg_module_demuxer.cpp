#include "platform/quicktime/modules/ffmpeg_module_parts.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <limits>
#include <string_view>

namespace qt {
namespace {

struct ContainerRow {
    std::string_view demuxer; ///< the first of its names
    OSType importer;
};
constexpr std::array<ContainerRow, 14> kContainers = {{
    {"mp3", Code("MP3 ")},
    {"aac", Code("ADTS")},
    {"mov", Code("mpg4")},
    {"wav", Code("WAVE")},
    {"aiff", Code("AIFC")},
    {"caf", Code("caff")},
    {"au", Code("ULAW")},
    {"flac", Code("FLAC")},
    {"ogg", Code("Ogg ")},
    {"amr", Code("AMR ")},
    {"avi", Code("AVI ")},
    {"matroska", Code("MKV ")},
    {"asf", Code("ASF ")},
    {"mpeg", Code("MPEG")},
}};

struct CodecRow {
    AVCodecID codec;
    OSType format;
};
constexpr std::array<CodecRow, 13> kFormats = {{
    {AV_CODEC_ID_MP3, Code(".mp3")},
    {AV_CODEC_ID_MP2, Code(".mp2")},
    {AV_CODEC_ID_AAC, Code("mp4a")},
    {AV_CODEC_ID_ALAC, Code("alac")},
    {AV_CODEC_ID_FLAC, Code("fLaC")},
    {AV_CODEC_ID_VORBIS, Code("vorb")},
    {AV_CODEC_ID_OPUS, Code("Opus")},
    {AV_CODEC_ID_AMR_NB, Code("samr")},
    {AV_CODEC_ID_AMR_WB, Code("sawb")},
    {AV_CODEC_ID_AC3, Code("ac-3")},
    {AV_CODEC_ID_EAC3, Code("ec-3")},
    {AV_CODEC_ID_WMAV2, Code("wma ")},
    {AV_CODEC_ID_ADPCM_IMA_QT, Code("ima4")},
}};

/// Any other codec: its name's first four letters.
OSType FormatOf(AVCodecID codec) {
    for (const CodecRow& row : kFormats)
        if (row.codec == codec) return row.format;
    OSType format = 0;
    const std::string_view name = avcodec_get_name(codec);
    for (std::size_t i = 0; i < 4; ++i)
        format = format << 8 | static_cast<unsigned char>(i < name.size() ? name[i] : ' ');
    return format;
}

OSType ImporterOf(std::string_view demuxer) {
    demuxer = demuxer.substr(0, demuxer.find(','));
    for (const ContainerRow& row : kContainers)
        if (row.demuxer == demuxer) return row.importer;
    OSType importer = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const char letter = i < demuxer.size() ? demuxer[i] : ' ';
        const bool is_lower = letter >= 'a' && letter <= 'z';
        importer = importer << 8 | static_cast<unsigned char>(is_lower ? letter - 'a' + 'A' : letter);
    }
    return importer;
}

/// Some formats are lists of other files and addresses, or say where a stream will arrive. Nothing but the
/// data itself is opened, by either way that a demultiplexer has to open more.
void KeepToTheData(AVFormatContext& format) {
    format.io_open = [](AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**) {
        return AVERROR(EPERM);
    };
    format.protocol_whitelist = av_strdup("none");
}

/// Of this thread, so that waiting for a disk does not count.
double ProcessorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// A data source as the library reads files.
class SourceReader final : public AvStream {
public:
    explicit SourceReader(std::shared_ptr<DataSource> data)
        : AvStream(Read, nullptr), data_(std::move(data)) {}

    /// Until EndOpening, reading ends once the thread has worked for ten seconds, a hundred times what usual
    /// files take: some tables cost the library time by the square of their size.
    void BeginOpening() { last_ = ProcessorSeconds() + kLongestOpening; }
    void EndOpening() { last_ = std::numeric_limits<double>::infinity(); }

private:
    static int Read(void* stream, std::uint8_t* buffer, int size) {
        auto& self = *static_cast<SourceReader*>(static_cast<AvStream*>(stream));
        if (ProcessorSeconds() > self.last_) return AVERROR_EXIT;
        const std::size_t got = self.data_->Read(
            self.position_, {reinterpret_cast<std::byte*>(buffer), static_cast<std::size_t>(size)});
        self.position_ += got;
        return got > 0 ? static_cast<int>(got) : AVERROR_EOF;
    }

    [[nodiscard]] std::uint64_t Size() const override { return data_->GetSize(); }

    std::shared_ptr<DataSource> data_;
    static constexpr double kLongestOpening = 10; ///< seconds
    double last_ = std::numeric_limits<double>::infinity();
};

class AvFile final : public DemultiplexedSound {
public:
    explicit AvFile(std::shared_ptr<DataSource> data)
        : data_(std::move(data)), frame_(av_frame_alloc()), packet_(av_packet_alloc()) {}

    bool Open() {
        if (frame_ == nullptr || packet_ == nullptr || !OpenStream()) return false;
        const AVStream& stream = *format_->streams[stream_];
        facts_.importer = ImporterOf(format_->iformat->name);
        facts_.format = FormatOf(stream.codecpar->codec_id);
        facts_.channels = static_cast<std::uint32_t>(std::max(0, decoder_->ch_layout.nb_channels));
        facts_.rate = static_cast<std::uint32_t>(std::max(0, decoder_->sample_rate));
        facts_.frames_per_packet = static_cast<std::uint32_t>(std::max(0, stream.codecpar->frame_size));
        facts_.has_video = av_find_best_stream(format_.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0) >= 0;
        const std::int64_t rate =
            stream.codecpar->bit_rate != 0 ? stream.codecpar->bit_rate : format_->bit_rate;
        facts_.bits_per_second = static_cast<std::uint32_t>(std::clamp<std::int64_t>(rate, 0, INT32_MAX));
        if (facts_.channels == 0 || facts_.rate == 0) return false;
        return CountFrames();
    }

    [[nodiscard]] const Facts& GetFacts() const override { return facts_; }

    bool Decode(std::vector<float>& out) override {
        while (!at_end_) {
            const std::size_t before = out.size();
            const int code = av_read_frame(format_.get(), packet_.get());
            at_end_ = code < 0;
            if (at_end_) {
                DecodePacket(*decoder_, *frame_, nullptr, out);
            } else if (packet_->stream_index == stream_) {
                DecodePacket(*decoder_, *frame_, packet_.get(), out);
            }
            av_packet_unref(packet_.get());
            if (out.size() > before) return true;
        }
        return false;
    }

    bool Rewind() override { return OpenStream(); }

private:
    /// From the beginning, exactly: seeking would be a matter of packets.
    bool OpenStream() {
        decoder_.reset();
        format_.reset();
        at_end_ = false;
        reader_ = std::make_unique<SourceReader>(data_);
        if (reader_->Context() == nullptr || !OpenFormat()) return false;
        AVFormatContext* format = format_.get();
        const AVCodec* codec = nullptr;
        stream_ = av_find_best_stream(format, AVMEDIA_TYPE_AUDIO, -1, -1, &codec, 0);
        if (stream_ < 0 || codec == nullptr) return false;
        for (unsigned i = 0; i < format->nb_streams; ++i)
            if (static_cast<int>(i) != stream_) format->streams[i]->discard = AVDISCARD_ALL;
        decoder_.reset(avcodec_alloc_context3(codec));
        if (decoder_ == nullptr) return false;
        if (avcodec_parameters_to_context(decoder_.get(), format->streams[stream_]->codecpar) < 0)
            return false;
        decoder_->pkt_timebase = format->streams[stream_]->time_base;
        return avcodec_open2(decoder_.get(), codec, nullptr) >= 0;
    }

    bool OpenFormat() {
        AVFormatContext* format = avformat_alloc_context();
        if (format == nullptr) return false;
        format->pb = reader_->Context();
        format->flags |= AVFMT_FLAG_CUSTOM_IO;
        KeepToTheData(*format);
        reader_->BeginOpening();
        const AVInputFormat* demuxer = nullptr;
        av_probe_input_buffer2(format->pb, &demuxer, nullptr, nullptr, 0, 0);
        // Its index is sorted at once, and nobody seeks; other formats take durations from theirs.
        if (demuxer != nullptr && std::string_view(demuxer->name).starts_with("matroska"))
            format->flags |= AVFMT_FLAG_IGNIDX;
        if (avformat_open_input(&format, nullptr, demuxer, nullptr) < 0) return false; // frees it on failure
        format_.reset(format);
        const bool found = avformat_find_stream_info(format, nullptr) >= 0;
        reader_->EndOpening();
        return found;
    }

    /// The container's word where it counts in units as fine as frames, else what decoding gives; the sum
    /// over the packets where these are alike. Of a film's sound the container's word is enough.
    bool CountFrames() {
        const AVStream& stream = *format_->streams[stream_];
        const AVRational frame = {1, decoder_->sample_rate};
        const bool estimated = format_->duration_estimation_method != AVFMT_DURATION_FROM_STREAM;
        const bool counted = stream.duration > 0 && !estimated; // writers leave 0 where they can't go back
        if (counted && (facts_.has_video || av_cmp_q(stream.time_base, frame) <= 0)) {
            if (TakeClaim(av_rescale_q(stream.duration, stream.time_base, frame))) return true;
        } else if (facts_.has_video && format_->duration != AV_NOPTS_VALUE) {
            if (TakeClaim(av_rescale(format_->duration, decoder_->sample_rate, AV_TIME_BASE))) return true;
        }
        if (estimated && stream.codecpar->frame_size > 0) {
            AddUpPackets();
        } else {
            const std::int64_t most = MostFrames();
            std::vector<float> decoded;
            for (; facts_.frames < most && Decode(decoded); decoded.clear())
                facts_.frames += static_cast<std::int64_t>(decoded.size() / facts_.channels);
            facts_.frames = std::min(facts_.frames, most);
        }
        return OpenStream();
    }

    /// False for a number of frames that the file can't hold.
    bool TakeClaim(std::int64_t frames) {
        if (!CanHoldFrames(data_->GetSize(), frames)) return false;
        facts_.frames = std::max<std::int64_t>(0, frames);
        return true;
    }

    /// Music of game machines may play on for ever: its players end it after this time.
    [[nodiscard]] std::int64_t MostFrames() const {
        constexpr std::int64_t kEndlessSeconds = 150;
        const bool may_be_endless = format_->iformat->name == std::string_view("libgme");
        return may_be_endless ? kEndlessSeconds * decoder_->sample_rate : INT64_MAX;
    }

    void AddUpPackets() {
        const AVStream& stream = *format_->streams[stream_];
        const AVRational frame = {1, decoder_->sample_rate};
        const std::int64_t usual = stream.codecpar->frame_size;
        while (av_read_frame(format_.get(), packet_.get()) >= 0) {
            if (packet_->stream_index == stream_) {
                const std::int64_t count = av_rescale_q(packet_->duration, stream.time_base, frame);
                facts_.frames += std::abs(count - usual) <= 1 ? usual : count; // rounded to the time base
            }
            av_packet_unref(packet_.get());
        }
        facts_.frames = std::max<std::int64_t>(0, facts_.frames);
    }

    std::shared_ptr<DataSource> data_;
    std::unique_ptr<SourceReader> reader_; ///< outlives the format context
    Av<AVFormatContext> format_;
    Av<AVCodecContext> decoder_;
    Av<AVFrame> frame_;
    Av<AVPacket> packet_;
    Facts facts_;
    int stream_ = -1;
    bool at_end_ = false;
};

} // namespace

std::unique_ptr<DemultiplexedSound> OpenFile(std::shared_ptr<DataSource> data) {
    auto file = std::make_unique<AvFile>(std::move(data));
    if (!file->Open()) return nullptr;
    return file;
}

} // namespace qt
