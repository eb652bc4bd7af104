#include "platform/quicktime/modules/ffmpeg_module_parts.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace qt {
namespace {

/// Codecs that 'mp4a' stands for besides AAC, by the object type of its set-up.
constexpr std::array<std::pair<std::uint8_t, AVCodecID>, 5> kObjectTypes = {{
    {0x69, AV_CODEC_ID_MP3},
    {0x6B, AV_CODEC_ID_MP3},
    {0xA5, AV_CODEC_ID_AC3},
    {0xA9, AV_CODEC_ID_DTS},
    {0xDD, AV_CODEC_ID_VORBIS},
}};

/// What the library's tables for QuickTime and MPEG-4 files, and for tags of WAVE files, take a format for.
AVCodecID CodecOf(OSType format) {
    const AVCodecTag* const movie_tags[] = {avformat_get_mov_audio_tags(), nullptr};
    const AVCodecTag* const wave_tags[] = {avformat_get_riff_audio_tags(), nullptr};
    constexpr OSType kWave = Code("ms\0\0");
    if ((format & 0xFFFF'0000) == kWave) return av_codec_get_id(wave_tags, format & 0xFFFF);
    return av_codec_get_id(movie_tags, __builtin_bswap32(format));
}

const AVCodec* FindCodec(const DecoderSettings& settings) {
    AVCodecID id = CodecOf(settings.format);
    for (const auto& [object_type, codec] : kObjectTypes)
        if (settings.format == Code("mp4a") && settings.object_type == object_type) id = codec;
    return avcodec_find_decoder(id);
}

template <class Sample>
void Interleave(const AVFrame& frame, bool planar, float offset, float scale, float* out) {
    const int channels = frame.ch_layout.nb_channels;
    for (int channel = 0; channel < channels; ++channel) {
        const auto* plane = reinterpret_cast<const Sample*>(frame.extended_data[planar ? channel : 0]);
        const std::ptrdiff_t step = planar ? 1 : channels;
        const Sample* sample = plane + (planar ? 0 : channel);
        for (std::ptrdiff_t i = 0; i < frame.nb_samples; ++i)
            out[i * channels + channel] = (static_cast<float>(sample[i * step]) - offset) * scale;
    }
}

class AvPacketDecoder final : public PacketDecoder {
public:
    explicit AvPacketDecoder(Av<AVCodecContext> context)
        : context_(std::move(context)), frame_(av_frame_alloc()), packet_(av_packet_alloc()) {}

    bool Decode(std::span<const std::byte> bytes, std::vector<float>& out) override {
        if (frame_ == nullptr || packet_ == nullptr) return false;
        if (bytes.empty()) return DecodePacket(*context_, *frame_, nullptr, out);
        // The decoder reads a little beyond a packet: the padding has to be there, and zero.
        if (av_new_packet(packet_.get(), static_cast<int>(bytes.size())) < 0) return false;
        std::memcpy(packet_->data, bytes.data(), bytes.size());
        const bool decoded = DecodePacket(*context_, *frame_, packet_.get(), out);
        av_packet_unref(packet_.get());
        return decoded;
    }

    void Reset() override { avcodec_flush_buffers(context_.get()); }
    [[nodiscard]] std::uint32_t Channels() const override {
        return static_cast<std::uint32_t>(std::max(0, context_->ch_layout.nb_channels));
    }
    [[nodiscard]] std::uint32_t Rate() const override {
        return static_cast<std::uint32_t>(std::max(0, context_->sample_rate));
    }

private:
    Av<AVCodecContext> context_;
    Av<AVFrame> frame_;
    Av<AVPacket> packet_;
};

} // namespace

bool AppendFrame(const AVFrame& frame, std::vector<float>& out) {
    const auto format = static_cast<AVSampleFormat>(frame.format);
    const std::size_t before = out.size();
    const auto count =
        static_cast<std::size_t>(frame.nb_samples) * static_cast<std::size_t>(frame.ch_layout.nb_channels);
    out.resize(before + count);
    float* const target = out.data() + before;
    const bool planar = av_sample_fmt_is_planar(format) != 0;
    switch (av_get_packed_sample_fmt(format)) {
    case AV_SAMPLE_FMT_U8:
        Interleave<std::uint8_t>(frame, planar, 128.0F, 1.0F / 128.0F, target);
        return true;
    case AV_SAMPLE_FMT_S16: Interleave<std::int16_t>(frame, planar, 0, 1.0F / 32768.0F, target); return true;
    case AV_SAMPLE_FMT_S32:
        Interleave<std::int32_t>(frame, planar, 0, 1.0F / 2147483648.0F, target);
        return true;
    case AV_SAMPLE_FMT_S64:
        Interleave<std::int64_t>(frame, planar, 0, 1.0F / 9223372036854775808.0F, target);
        return true;
    case AV_SAMPLE_FMT_FLT: Interleave<float>(frame, planar, 0, 1, target); return true;
    case AV_SAMPLE_FMT_DBL: Interleave<double>(frame, planar, 0, 1, target); return true;
    default: out.resize(before); return false;
    }
}

bool DecodePacket(AVCodecContext& context, AVFrame& frame, const AVPacket* packet, std::vector<float>& out) {
    if (avcodec_send_packet(&context, packet) < 0) return false;
    while (avcodec_receive_frame(&context, &frame) >= 0) {
        const bool appended = AppendFrame(frame, out);
        av_frame_unref(&frame);
        if (!appended) return false;
    }
    return true;
}

std::unique_ptr<PacketDecoder> OpenDecoder(const DecoderSettings& settings) {
    const AVCodec* codec = FindCodec(settings);
    if (codec == nullptr) return nullptr;
    Av<AVCodecContext> context(avcodec_alloc_context3(codec));
    if (context == nullptr) return nullptr;
    context->sample_rate = static_cast<int>(settings.rate);
    av_channel_layout_default(&context->ch_layout, static_cast<int>(settings.channels));
    context->block_align = static_cast<int>(settings.packet_bytes);
    const int own_bits = av_get_bits_per_sample(codec->id); // files state those of the decoded samples
    context->bits_per_coded_sample = own_bits > 0 ? own_bits : static_cast<int>(settings.bits);
    context->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL; // which frames are lead-in is known outside
    if (!settings.setup.empty()) {
        context->extradata =
            static_cast<std::uint8_t*>(av_mallocz(settings.setup.size() + AV_INPUT_BUFFER_PADDING_SIZE));
        if (context->extradata == nullptr) return nullptr;
        std::memcpy(context->extradata, settings.setup.data(), settings.setup.size());
        context->extradata_size = static_cast<int>(settings.setup.size());
    }
    if (avcodec_open2(context.get(), codec, nullptr) < 0) return nullptr;
    return std::make_unique<AvPacketDecoder>(std::move(context));
}

} // namespace qt
