// What the sources of the sound module share.
#pragma once

#include "platform/quicktime/modules/ffmpeg_module.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace qt {

struct AvDeleter {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
template <class Object>
using Av = std::unique_ptr<Object, AvDeleter>;

/// Bytes of ours as the library reads or writes files.
class AvStream {
public:
    AvStream(const AvStream&) = delete;
    AvStream& operator=(const AvStream&) = delete;

    [[nodiscard]] AVIOContext* Context() const { return context_; } ///< null: out of memory

protected:
    using Transfer = int (*)(void* stream, std::uint8_t* bytes, int size); ///< `stream` is the AvStream

    /// Exactly one of the two is given.
    AvStream(Transfer read, Transfer write);
    ~AvStream();

    [[nodiscard]] virtual std::uint64_t Size() const = 0;

    std::uint64_t position_ = 0;

private:
    static std::int64_t Seek(void* stream, std::int64_t offset, int whence);

    AVIOContext* context_ = nullptr;
};

/// Appends a frame's samples as interleaved floats; false for a sample format that is none.
bool AppendFrame(const AVFrame& frame, std::vector<float>& out);

/// Sends a packet (null: the end) and appends every frame that comes of it.
bool DecodePacket(AVCodecContext& context, AVFrame& frame, const AVPacket* packet, std::vector<float>& out);

std::unique_ptr<PacketDecoder> OpenDecoder(const DecoderSettings& settings);
std::unique_ptr<DemultiplexedSound> OpenFile(std::shared_ptr<DataSource> data);
std::unique_ptr<Resampler> OpenResampler(std::uint32_t channels, std::uint32_t from, std::uint32_t to);
std::unique_ptr<SoundEncoder> OpenEncoder(const EncoderSettings& settings, EncodedSink& sink);

} // namespace qt
