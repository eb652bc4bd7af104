// Interface of the module that decodes and encodes compressed sound and changes sample rates. It stands apart
// because its libraries take tens of milliseconds to load, which nobody should pay who works on uncompressed
// sounds.
#pragma once

#include "platform/quicktime/data_source.h"
#include "platform/quicktime/movies/pcm.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace qt {

/// Packets in, interleaved floats out; channels and rate are known once something came out.
class PacketDecoder {
public:
    PacketDecoder() = default;
    PacketDecoder(const PacketDecoder&) = delete;
    PacketDecoder& operator=(const PacketDecoder&) = delete;
    virtual ~PacketDecoder() = default;

    /// Appends what the packet gives to `out`. A damaged packet gives nothing or something shorter; false.
    /// An empty one gives what was held back, and ends the stream until Reset.
    virtual bool Decode(std::span<const std::byte> packet, std::vector<float>& out) = 0;
    /// Forgets all packets, for a jump.
    virtual void Reset() = 0;
    [[nodiscard]] virtual std::uint32_t Channels() const = 0;
    [[nodiscard]] virtual std::uint32_t Rate() const = 0;
};

struct DecoderSettings {
    OSType format = 0;            ///< of the sample description
    std::uint8_t object_type = 0; ///< of 'mp4a': which codec it stands for
    std::uint32_t channels = 0;
    std::uint32_t rate = 0;
    std::uint32_t packet_bytes = 0; ///< of packets that are alike
    std::uint32_t bits = 0;
    std::span<const std::byte> setup;
};

/// The first sound of a file that only a demultiplexer understands.
class DemultiplexedSound {
public:
    struct Facts {
        OSType importer = 0; ///< as GetMovieImporterForDataRef
        OSType format = 0;   ///< for the sample description
        std::uint32_t channels = 0;
        std::uint32_t rate = 0;
        std::int64_t frames = 0;
        std::uint32_t frames_per_packet = 0;
        std::uint32_t bits_per_second = 0;
        bool has_video = false;
    };

    DemultiplexedSound() = default;
    DemultiplexedSound(const DemultiplexedSound&) = delete;
    DemultiplexedSound& operator=(const DemultiplexedSound&) = delete;
    virtual ~DemultiplexedSound() = default;

    [[nodiscard]] virtual const Facts& GetFacts() const = 0;
    /// Appends some of the frames that follow, interleaved; false at the end.
    virtual bool Decode(std::vector<float>& out) = 0;
    /// Back to the first frame.
    virtual bool Rewind() = 0;
};

/// Changes the rate of interleaved floats. What goes in comes out as long as it was, to the nearest frame.
class Resampler {
public:
    Resampler() = default;
    Resampler(const Resampler&) = delete;
    Resampler& operator=(const Resampler&) = delete;
    virtual ~Resampler() = default;

    /// Appends what the frames give to `out`; empty input: what is still held back.
    virtual bool Process(std::span<const float> frames, std::vector<float>& out) = 0;
};

/// A file that is being written; it outlives its encoder.
class EncodedSink {
public:
    EncodedSink() = default;
    EncodedSink(const EncodedSink&) = delete;
    EncodedSink& operator=(const EncodedSink&) = delete;
    virtual ~EncodedSink() = default;

    virtual bool Write(std::uint64_t offset, std::span<const std::byte> bytes) = 0;
    [[nodiscard]] virtual std::uint64_t GetSize() const = 0;
};

struct EncoderSettings {
    const char* container = nullptr; ///< the library's names of them
    const char* encoder = nullptr;
    PcmLayout input;                   ///< of what is encoded: little-endian
    std::uint32_t bits = 0;            ///< how many upper bits of the samples count; 0: all
    std::uint32_t bits_per_second = 0; ///< 0: by quality
    std::uint32_t quality = 0;
};

/// Interleaved samples in, a file out.
class SoundEncoder {
public:
    SoundEncoder() = default;
    SoundEncoder(const SoundEncoder&) = delete;
    SoundEncoder& operator=(const SoundEncoder&) = delete;
    virtual ~SoundEncoder() = default;

    virtual bool Write(std::span<const std::byte> frames) = 0;
    /// Writes what is held back, and the file's end.
    virtual bool Finish() = 0;
};

/// What the module's corvane_module() answers. Each answers null for what it can't do.
struct FfmpegModule {
    std::unique_ptr<PacketDecoder> (*open_decoder)(const DecoderSettings& settings);
    std::unique_ptr<DemultiplexedSound> (*open_file)(std::shared_ptr<DataSource> data);
    std::unique_ptr<Resampler> (*open_resampler)(std::uint32_t channels, std::uint32_t from,
                                                 std::uint32_t to);
    std::unique_ptr<SoundEncoder> (*open_encoder)(const EncoderSettings& settings, EncodedSink& sink);
};

} // namespace qt
