// Layouts of uncompressed samples, and their conversion to and from floats.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace qt {

enum class SampleEncoding : std::uint8_t {
    kUnsigned8,
    kSigned8,
    kSigned16,
    kSigned24,
    kSigned32,
    kFloat32,
    kFloat64,
    kMuLaw,
    kALaw
};

/// Frames of interleaved samples. A rate is in Hz; 0 channels mean that there is no layout.
struct PcmLayout {
    SampleEncoding encoding = SampleEncoding::kSigned16;
    bool big_endian = false;
    std::uint32_t channels = 0;
    std::uint32_t rate = 0;

    [[nodiscard]] std::uint32_t SampleBytes() const;
    [[nodiscard]] std::uint32_t FrameBytes() const { return SampleBytes() * channels; }
    bool operator==(const PcmLayout&) const = default;
};

/// What decoders deliver, and what sounds are mixed in.
constexpr PcmLayout FloatLayout(std::uint32_t channels, std::uint32_t rate) {
    return {SampleEncoding::kFloat32, false, channels, rate};
}

/// Whether a header's word is to be taken that compressed sound of so many bytes has so many frames: FLAC
/// packs 65,535 frames of silence into ten bytes. One that claims more is mostly wrong, or says in its way
/// that it doesn't know, and the frames are counted instead.
constexpr bool CanHoldFrames(std::uint64_t bytes, std::int64_t frames) {
    constexpr std::int64_t kMostFramesInAByte = 8'192;
    return frames / kMostFramesInAByte <= static_cast<std::int64_t>(bytes);
}

/// Samples as floats, full scale being 1. Integers of up to 24 bits come through exactly. `bytes` holds as
/// many samples as `samples` has room for; the layout's channels don't matter.
void SamplesToFloat(const PcmLayout& layout, std::span<const std::byte> bytes, std::span<float> samples);

/// Floats as samples: rounded to the nearest (halves to even), clipped to the range of the encoding.
/// µ-law and A-law are not written: false, as for a buffer that is too short.
bool SamplesFromFloat(const PcmLayout& layout, std::span<const float> samples, std::span<std::byte> bytes);

/// Turns frames of `from` channels into frames of `to`: mono fills every channel; down to stereo, the centre
/// and the surrounds of the usual 3 to 8 channel orders go to their sides, the sum of weights being 1; down
/// to mono, the mean. Other pairs keep the channels that both have, the rest silent. Not in place.
void MapChannels(std::span<const float> in, std::uint32_t from, std::span<float> out, std::uint32_t to);

} // namespace qt
