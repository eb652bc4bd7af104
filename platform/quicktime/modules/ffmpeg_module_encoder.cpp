#include "platform/quicktime/modules/ffmpeg_module_parts.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace qt {
namespace {

constexpr int kUsualFrame = 4096; ///< for encoders that take any number of samples

struct SampleFormat {
    SampleEncoding encoding;
    AVSampleFormat packed;
};
constexpr std::array<SampleFormat, 5> kSampleFormats = {{
    {SampleEncoding::kUnsigned8, AV_SAMPLE_FMT_U8},
    {SampleEncoding::kSigned16, AV_SAMPLE_FMT_S16},
    {SampleEncoding::kSigned32, AV_SAMPLE_FMT_S32},
    {SampleEncoding::kFloat32, AV_SAMPLE_FMT_FLT},
    {SampleEncoding::kFloat64, AV_SAMPLE_FMT_DBL},
}};

/// The encoder's own form of these samples, packed or planar.
AVSampleFormat FormatFor(const AVCodec& codec, SampleEncoding encoding) {
    const auto* const row = std::ranges::find(kSampleFormats, encoding, &SampleFormat::encoding);
    if (row == kSampleFormats.end() || codec.sample_fmts == nullptr) return AV_SAMPLE_FMT_NONE;
    for (const AVSampleFormat* format = codec.sample_fmts; *format != AV_SAMPLE_FMT_NONE; ++format)
        if (av_get_packed_sample_fmt(*format) == row->packed) return *format;
    return AV_SAMPLE_FMT_NONE;
}

template <class Sample>
void Split(const std::byte* packed, AVFrame& frame, int first, int count) {
    const int channels = frame.ch_layout.nb_channels;
    for (int channel = 0; channel < channels; ++channel) {
        auto* plane = reinterpret_cast<Sample*>(frame.extended_data[channel]) + first;
        const auto* sample = reinterpret_cast<const Sample*>(packed) + channel;
        for (int i = 0; i < count; ++i, sample += channels) plane[i] = *sample;
    }
}

/// Puts frames of interleaved samples behind the first ones of a frame.
void Fill(std::span<const std::byte> packed, AVFrame& frame, int first, int count) {
    const auto format = static_cast<AVSampleFormat>(frame.format);
    const int size = av_get_bytes_per_sample(format);
    if (av_sample_fmt_is_planar(format) == 0) {
        const auto at = std::ptrdiff_t{first} * frame.ch_layout.nb_channels * size;
        std::memcpy(frame.data[0] + at, packed.data(), packed.size());
        return;
    }
    switch (size) {
    case 1: return Split<std::uint8_t>(packed.data(), frame, first, count);
    case 2: return Split<std::uint16_t>(packed.data(), frame, first, count);
    case 4: return Split<std::uint32_t>(packed.data(), frame, first, count);
    default: return Split<std::uint64_t>(packed.data(), frame, first, count);
    }
}

/// A sink as the library writes files.
class SinkWriter final : public AvStream {
public:
    explicit SinkWriter(EncodedSink& sink) : AvStream(nullptr, Write), sink_(sink) {}

private:
    static int Write(void* stream, std::uint8_t* bytes, int size) {
        auto& self = *static_cast<SinkWriter*>(static_cast<AvStream*>(stream));
        const auto data =
            std::span(reinterpret_cast<const std::byte*>(bytes), static_cast<std::size_t>(size));
        if (!self.sink_.Write(self.position_, data)) return AVERROR(EIO);
        self.position_ += data.size();
        return size;
    }

    [[nodiscard]] std::uint64_t Size() const override { return sink_.GetSize(); }

    EncodedSink& sink_;
};

struct OutputDeleter {
    void operator()(AVFormatContext* context) const { avformat_free_context(context); }
};

class AvEncoder final : public SoundEncoder {
public:
    explicit AvEncoder(EncodedSink& sink)
        : writer_(sink), frame_(av_frame_alloc()), packet_(av_packet_alloc()) {}

    bool Open(const EncoderSettings& settings) {
        if (frame_ == nullptr || packet_ == nullptr || writer_.Context() == nullptr) return false;
        AVFormatContext* format = nullptr;
        if (avformat_alloc_output_context2(&format, nullptr, settings.container, nullptr) < 0) return false;
        format_.reset(format);
        format->pb = writer_.Context();
        format->flags |= AVFMT_FLAG_CUSTOM_IO | AVFMT_FLAG_BITEXACT; // no names of programs in the file
        // Headers of movies have dates; files of other kinds would get a tag.
        const std::string_view container = settings.container;
        if (container == "ipod" || container == "mov")
            av_dict_set(&format->metadata, "creation_time", "now", 0);
        stream_ = avformat_new_stream(format, nullptr);
        if (stream_ == nullptr || !OpenEncoder(settings) || !MakeFrame()) return false;
        stream_->time_base = encoder_->time_base;
        return avcodec_parameters_from_context(stream_->codecpar, encoder_.get()) >= 0 &&
               avformat_write_header(format, nullptr) >= 0;
    }

    bool Write(std::span<const std::byte> frames) override {
        while (!frames.empty()) {
            const int room = capacity_ - filled_;
            const int count =
                static_cast<int>(std::min(frames.size() / frame_bytes_, static_cast<std::size_t>(room)));
            const std::size_t size = static_cast<std::size_t>(count) * frame_bytes_;
            if (filled_ == 0 && av_frame_make_writable(frame_.get()) < 0) return false;
            Fill(frames.first(size), *frame_, filled_, count);
            frames = frames.subspan(size);
            filled_ += count;
            if (filled_ == capacity_ && !SendFrame()) return false;
        }
        return true;
    }

    bool Finish() override {
        if (filled_ > 0 && !SendFrame()) return false;
        if (avcodec_send_frame(encoder_.get(), nullptr) < 0 || !WritePackets()) return false;
        return av_write_trailer(format_.get()) >= 0 && writer_.Context()->error >= 0;
    }

private:
    bool OpenEncoder(const EncoderSettings& settings) {
        const AVCodec* codec = avcodec_find_encoder_by_name(settings.encoder);
        if (codec == nullptr) return false;
        encoder_.reset(avcodec_alloc_context3(codec));
        if (encoder_ == nullptr) return false;
        AVCodecContext& encoder = *encoder_;
        encoder.sample_fmt = FormatFor(*codec, settings.input.encoding);
        encoder.sample_rate = static_cast<int>(settings.input.rate);
        encoder.time_base = {1, encoder.sample_rate};
        av_channel_layout_default(&encoder.ch_layout, static_cast<int>(settings.input.channels));
        encoder.bits_per_raw_sample = static_cast<int>(settings.bits);
        encoder.flags |= AV_CODEC_FLAG_BITEXACT;
        if (settings.bits_per_second > 0) {
            encoder.bit_rate = settings.bits_per_second;
        } else if (settings.quality > 0) {
            encoder.flags |= AV_CODEC_FLAG_QSCALE;
            encoder.global_quality = static_cast<int>(settings.quality) * FF_QP2LAMBDA;
        }
        if ((format_->oformat->flags & AVFMT_GLOBALHEADER) != 0) encoder.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        frame_bytes_ =
            settings.input.channels * static_cast<std::size_t>(av_get_bytes_per_sample(encoder.sample_fmt));
        return encoder.sample_fmt != AV_SAMPLE_FMT_NONE && avcodec_open2(&encoder, codec, nullptr) >= 0;
    }

    bool MakeFrame() {
        capacity_ = encoder_->frame_size > 0 ? encoder_->frame_size : kUsualFrame;
        frame_->format = encoder_->sample_fmt;
        frame_->nb_samples = capacity_;
        frame_->sample_rate = encoder_->sample_rate;
        return av_channel_layout_copy(&frame_->ch_layout, &encoder_->ch_layout) >= 0 &&
               av_frame_get_buffer(frame_.get(), 0) >= 0;
    }

    bool SendFrame() {
        frame_->nb_samples = filled_;
        frame_->pts = sent_;
        sent_ += filled_;
        filled_ = 0;
        const bool accepted = avcodec_send_frame(encoder_.get(), frame_.get()) >= 0;
        frame_->nb_samples = capacity_;
        return accepted && WritePackets();
    }

    bool WritePackets() {
        int code = 0;
        while ((code = avcodec_receive_packet(encoder_.get(), packet_.get())) >= 0) {
            av_packet_rescale_ts(packet_.get(), encoder_->time_base, stream_->time_base);
            packet_->stream_index = stream_->index;
            if (av_interleaved_write_frame(format_.get(), packet_.get()) < 0) return false;
            if (writer_.Context()->error < 0) return false;
        }
        return code == AVERROR(EAGAIN) || code == AVERROR_EOF;
    }

    SinkWriter writer_; ///< outlives the format context
    std::unique_ptr<AVFormatContext, OutputDeleter> format_;
    AVStream* stream_ = nullptr; ///< the format context's
    Av<AVCodecContext> encoder_;
    Av<AVFrame> frame_;
    Av<AVPacket> packet_;
    std::size_t frame_bytes_ = 0; ///< of interleaved samples
    int capacity_ = 0;
    int filled_ = 0;
    std::int64_t sent_ = 0;
};

} // namespace

std::unique_ptr<SoundEncoder> OpenEncoder(const EncoderSettings& settings, EncodedSink& sink) {
    auto encoder = std::make_unique<AvEncoder>(sink);
    if (!encoder->Open(settings)) return nullptr;
    return encoder;
}

} // namespace qt
