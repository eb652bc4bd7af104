// Sound sample descriptions: what a media's samples are. In memory the fields are in this machine's byte
// order; extensions behind them are atoms as in files (big-endian size and type, then the data).
#pragma once

#include "platform/quicktime/handles.h"
#include "platform/quicktime/movies/pcm.h"

#include <optional>
#include <string>
#include <vector>

/// Version 0. `descSize` counts the whole description with its extensions.
struct SoundDescription {
    std::int32_t descSize = 36;
    OSType dataFormat = 0;
    std::int32_t resvd1 = 0;
    std::int16_t resvd2 = 0;
    std::int16_t dataRefIndex = 1;
    std::int16_t version = 0;
    std::int16_t revlevel = 0;
    OSType vendor = 0;
    std::int16_t numChannels = 0;
    std::int16_t sampleSize = 0;    ///< bits; 16 for compressed sound
    std::int16_t compressionID = 0; ///< 0 none, -1 fixed packets, -2 packets of varying size
    std::int16_t packetSize = 0;
    std::uint32_t sampleRate = 0; ///< unsigned 16.16 Hz; rates from 65,536 Hz on need version 2
};
static_assert(sizeof(SoundDescription) == 36);

struct SoundDescriptionV1 : SoundDescription {
    std::uint32_t samplesPerPacket = 1;
    std::uint32_t bytesPerPacket = 0; ///< of one channel; 0 when it varies
    std::uint32_t bytesPerFrame = 0;
    std::uint32_t bytesPerSample = 0;
};
static_assert(sizeof(SoundDescriptionV1) == 52);

/// numChannels 3, sampleSize 16, compressionID -2 and sampleRate 0x10000 are fixed in this version.
struct SoundDescriptionV2 : SoundDescription {
    std::uint32_t sizeOfStructOnly = 72;
    double audioSampleRate = 0;
    std::uint32_t numAudioChannels = 0;
    std::uint32_t always7F000000 = 0x7F000000;
    std::uint32_t constBitsPerChannel = 0;
    std::uint32_t formatSpecificFlags = 0;
    std::uint32_t constBytesPerAudioPacket = 0;
    std::uint32_t constLPCMFramesPerAudioPacket = 0;
};
static_assert(sizeof(SoundDescriptionV2) == 72);

/// A description of a sound stream that does not depend on the version.
struct AudioStreamBasicDescription {
    double mSampleRate = 0;
    OSType mFormatID = 0;           ///< 'lpcm' for every uncompressed format
    std::uint32_t mFormatFlags = 0; ///< of 'lpcm': 1 float, 2 big-endian, 4 signed, 8 packed; of 'alac': 1..4
    std::uint32_t mBytesPerPacket = 0;
    std::uint32_t mFramesPerPacket = 0;
    std::uint32_t mBytesPerFrame = 0;
    std::uint32_t mChannelsPerFrame = 0;
    std::uint32_t mBitsPerChannel = 0; ///< 0 for compressed sound
    std::uint32_t mReserved = 0;
};
static_assert(sizeof(AudioStreamBasicDescription) == 40);

inline constexpr OSErr invalidSampleDescription = -2041;
inline constexpr OSErr kQTPropertyNotSupportedErr = -2195;

/// A property of class 'sdes': 'asbd' (an AudioStreamBasicDescription), 'kuki' (the decoder's set-up bytes)
/// or 'clay' (channel layout). The handle is resized to the value. A property that the description does not
/// have gives kQTPropertyNotSupportedErr, a description that makes no sense invalidSampleDescription.
OSErr QTSoundDescriptionGetProperty(Handle description, OSType property_class, OSType property, Handle value);

/// Copies a description of any version into `converted` (resized) as version 1; extensions come along.
OSErr QTSoundDescriptionConvertToV1(Handle description, Handle converted);

/// Copies the data of the first extension of this type, without its header, into `extension` (resized).
OSErr GetSoundDescriptionExtension(Handle description, Handle extension, OSType type);

namespace qt {

using Bytes = std::vector<std::byte>;

/// The description's fields, whatever its version. Nothing for bytes that are no description.
struct SoundFormat {
    OSType data_format = 0;
    std::int16_t version = 0;
    std::uint32_t channels = 0;
    std::uint32_t bits = 0; ///< sample size as stated
    double rate = 0;
    std::int16_t compression_id = 0;
    std::uint32_t frames_per_packet = 0;
    std::uint32_t bytes_per_packet = 0; ///< of all channels; 0 when it varies or isn't stated
    std::uint32_t lpcm_flags = 0;
    std::span<const std::byte> extensions;
};
std::optional<SoundFormat> ReadSoundFormat(std::span<const std::byte> description);

/// The layout of uncompressed samples (µ-law and A-law count as such); nothing for compressed ones.
std::optional<PcmLayout> LayoutOf(std::span<const std::byte> description);

/// Format flags of 'lpcm' for a layout.
std::uint32_t LpcmFlags(const PcmLayout& layout);
/// A rate as unsigned 16.16; 0 for one that does not fit.
std::uint32_t FixedRate(double rate);

/// Data of the first extension of this type, also inside a 'wave' extension; empty when there is none.
std::span<const std::byte> FindExtension(std::span<const std::byte> extensions, OSType type);

/// Average bits per second that an 'esds' extension states; 0 without one.
std::uint32_t StatedBitRate(std::span<const std::byte> description);

/// Decoder set-up bytes that an 'esds' extension carries, and the object type that says which decoder.
struct StreamSetup {
    std::uint8_t object_type = 0;
    std::span<const std::byte> bytes;
};
StreamSetup ReadStreamSetup(std::span<const std::byte> esds);

/// A description of uncompressed samples: 'sowt' and 'twos' for 16 bits, 'raw ' for unsigned 8, 'in24',
/// 'in32', 'fl32', 'fl64', 'ulaw', 'alaw'. Signed 8-bit samples are 'lpcm', for 'twos' always means 16 bits
/// to those who work on samples.
Bytes DescribePcm(const PcmLayout& layout);

/// What is known of a compressed sound.
struct CompressedSound {
    OSType data_format = 0;
    std::uint32_t channels = 0;
    std::uint32_t rate = 0;
    std::uint32_t frames_per_packet = 0;
    std::uint32_t bytes_per_packet = 0; ///< of all channels; 0: packets vary, or the format says it
    std::uint32_t average_bytes_per_second = 0;
    std::uint16_t wave_tag = 0; ///< of the WAVE format in the 'wave' extension
    std::uint8_t alac_bits = 0; ///< of a sample, for an 'alac' extension; 0: none
};
Bytes DescribeCompressed(CompressedSound sound);

/// Descriptions as they stand in files: big-endian fields. Foreign bytes that are too short give nothing.
/// Signed 8-bit 'twos' and 'sowt' come back as 'lpcm' (see DescribePcm). MPEG-4 files state a rate from
/// 65,536 Hz on as 0: it is the time scale of their media.
std::optional<Bytes> SoundDescriptionFromFile(std::span<const std::byte> entry, std::uint32_t time_scale = 0);
Bytes SoundDescriptionToFile(std::span<const std::byte> description);

} // namespace qt
