#include "platform/quicktime/movies/sound_description.h"

#include "platform/quicktime/movies/aac_setup.h"
#include "platform/quicktime/movies/atoms.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>

namespace qt {
namespace {

constexpr std::uint32_t kLpcmFloat = 1;
constexpr std::uint32_t kLpcmBigEndian = 2;
constexpr std::uint32_t kLpcmSigned = 4;
constexpr std::uint32_t kLpcmPacked = 8;

constexpr double kFixedOne = 65536.0;
constexpr std::uint32_t kMaximumRate = 10'000'000;
constexpr std::uint32_t kFirstRateOfVersion2 = 65536; // what 16.16 can't hold

template <class Description>
Description Fields(std::span<const std::byte> bytes) {
    Description description;
    std::memcpy(static_cast<void*>(&description), bytes.data(), sizeof(description));
    return description;
}

template <class Description>
Bytes ToBytes(Description description, std::span<const std::byte> extensions = {}) {
    description.descSize = static_cast<std::int32_t>(sizeof(description) + extensions.size());
    Bytes bytes(sizeof(description) + extensions.size());
    std::memcpy(bytes.data(), &description, sizeof(description));
    std::copy(extensions.begin(), extensions.end(), bytes.begin() + sizeof(description));
    return bytes;
}

PcmLayout LpcmLayout(const SoundFormat& format, SampleEncoding encoding) {
    return {encoding, (format.lpcm_flags & kLpcmBigEndian) != 0, format.channels,
            static_cast<std::uint32_t>(std::lround(format.rate))};
}

std::optional<SampleEncoding> LpcmEncoding(std::uint32_t bits, std::uint32_t flags) {
    if ((flags & kLpcmFloat) != 0) {
        if (bits == 32) return SampleEncoding::kFloat32;
        if (bits == 64) return SampleEncoding::kFloat64;
        return std::nullopt;
    }
    switch (bits) {
    case 8: return (flags & kLpcmSigned) != 0 ? SampleEncoding::kSigned8 : SampleEncoding::kUnsigned8;
    case 16: return SampleEncoding::kSigned16;
    case 24: return SampleEncoding::kSigned24;
    case 32: return SampleEncoding::kSigned32;
    default: return std::nullopt;
    }
}

SoundDescriptionV2 DescribeInVersion2(OSType data_format, double rate, std::uint32_t channels) {
    SoundDescriptionV2 description;
    description.dataFormat = data_format;
    description.version = 2;
    description.numChannels = 3;
    description.sampleSize = 16;
    description.compressionID = -2;
    description.sampleRate = 0x10000;
    description.audioSampleRate = rate;
    description.numAudioChannels = channels;
    return description;
}

struct PcmCode {
    OSType code;
    SampleEncoding encoding;
};

constexpr std::array<PcmCode, 7> kSizedFormats = {{
    {Code("raw "), SampleEncoding::kUnsigned8},
    {Code("in24"), SampleEncoding::kSigned24},
    {Code("in32"), SampleEncoding::kSigned32},
    {Code("fl32"), SampleEncoding::kFloat32},
    {Code("fl64"), SampleEncoding::kFloat64},
    {Code("ulaw"), SampleEncoding::kMuLaw},
    {Code("alaw"), SampleEncoding::kALaw},
}};

OSType CodeOf(SampleEncoding encoding) {
    const auto* row = std::ranges::find(kSizedFormats, encoding, &PcmCode::encoding);
    return row != kSizedFormats.end() ? row->code : 0;
}

SoundDescriptionV2 DescribePcmInVersion2(const PcmLayout& layout) {
    const bool companded =
        layout.encoding == SampleEncoding::kMuLaw || layout.encoding == SampleEncoding::kALaw;
    const OSType code = companded ? CodeOf(layout.encoding) : Code("lpcm");
    SoundDescriptionV2 description = DescribeInVersion2(code, layout.rate, layout.channels);
    description.constBitsPerChannel = 8 * layout.SampleBytes();
    description.formatSpecificFlags = companded ? 0 : LpcmFlags(layout);
    description.constBytesPerAudioPacket = layout.FrameBytes();
    description.constLPCMFramesPerAudioPacket = 1;
    return description;
}

/// 'wave' extension that says that the samples are little-endian.
Bytes LittleEndianExtension(OSType format) {
    AtomWriter writer;
    writer.Atom(Code("wave"), [&] {
        writer.Atom(Code("frma"), [&] { writer.Put32(format); });
        writer.Atom(Code("enda"), [&] { writer.Put16(1); });
        writer.Atom(0, [] {});
    });
    return writer.Take();
}

/// 'wave' extension with the WAVE format structure of a sound; its fields are little-endian.
Bytes WaveFormatExtension(const CompressedSound& sound) {
    std::array<std::byte, 18> format{};
    const auto put = [&format](std::size_t offset, std::uint32_t value, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) format[offset + i] = static_cast<std::byte>(value >> (8 * i));
    };
    put(0, sound.wave_tag, 2);
    put(2, sound.channels, 2);
    put(4, sound.rate, 4);
    put(8, sound.average_bytes_per_second, 4);
    put(12, std::clamp<std::uint32_t>(sound.bytes_per_packet, 1, 0xFFFF), 2);
    AtomWriter writer;
    writer.Atom(Code("wave"), [&] {
        writer.Atom(Code("frma"), [&] { writer.Put32(sound.data_format); });
        writer.Atom(sound.data_format, [&] { writer.Put(format); });
        writer.Atom(0, [] {});
    });
    return writer.Take();
}

/// What Apple Lossless decoders are set up with: ALACSpecificConfig behind a version, big-endian.
Bytes AlacExtension(const CompressedSound& sound) {
    AtomWriter writer;
    writer.Atom(Code("alac"), [&] {
        writer.Put32(0);
        writer.Put32(sound.frames_per_packet);
        // With the coding parameters that all encoders use.
        writer.Put32(std::uint32_t{sound.alac_bits} << 16 | 40U << 8 | 10U);
        writer.Put32(14U << 24 | sound.channels << 16 | 255U);
        writer.Put32(0); // the largest packet, unknown
        writer.Put32(8 * sound.average_bytes_per_second);
        writer.Put32(sound.rate);
    });
    return writer.Take();
}

Bytes ExtensionsOf(const CompressedSound& sound) {
    Bytes extensions = sound.alac_bits != 0 ? AlacExtension(sound) : Bytes{};
    const Bytes wave = WaveFormatExtension(sound);
    extensions.insert(extensions.end(), wave.begin(), wave.end());
    return extensions;
}

/// Formats whose packets are alike, with what files often leave out: bytes of one channel's packet, frames.
struct FixedPackets {
    OSType code;
    std::uint32_t bytes;
    std::uint32_t frames;
};
constexpr std::array<FixedPackets, 3> kFixedPackets = {{
    {Code("ima4"), 34, 64},
    {Code("MAC3"), 2, 6},
    {Code("MAC6"), 1, 6},
}};

/// Of a SoundFormat or a CompressedSound.
template <class Sound>
void FillFixedPackets(Sound& sound) {
    for (const FixedPackets& fixed : kFixedPackets) {
        if (fixed.code != sound.data_format) continue;
        sound.bytes_per_packet = fixed.bytes * sound.channels;
        sound.frames_per_packet = fixed.frames;
    }
}

void FillPackets(SoundFormat& format) {
    if (const auto layout = LpcmEncoding(format.bits, format.lpcm_flags);
        format.data_format == Code("lpcm") && layout.has_value()) {
        format.bytes_per_packet = format.bits / 8 * format.channels;
        format.frames_per_packet = 1;
    }
    FillFixedPackets(format);
    if (format.frames_per_packet == 0 && format.data_format == Code("mp4a")) format.frames_per_packet = 1024;
    if (format.frames_per_packet == 0 && format.data_format == Code(".mp3")) format.frames_per_packet = 1152;
}

std::span<const std::byte> ExtensionsOf(std::span<const std::byte> description, std::size_t fields_size) {
    return Tail(description, fields_size);
}

/// Of AAC: as many as its own set-up tells, if it does.
std::uint32_t AacChannelsIn(std::span<const std::byte> extensions) {
    constexpr std::uint8_t kAac = 0x40;
    const StreamSetup setup = ReadStreamSetup(FindExtension(extensions, Code("esds")));
    return setup.object_type == kAac ? AacChannels(setup.bytes) : 0;
}

} // namespace

std::uint32_t LpcmFlags(const PcmLayout& layout) {
    std::uint32_t flags = kLpcmPacked;
    if (layout.big_endian) flags |= kLpcmBigEndian;
    if (layout.encoding >= SampleEncoding::kFloat32)
        flags |= kLpcmFloat;
    else if (layout.encoding != SampleEncoding::kUnsigned8)
        flags |= kLpcmSigned;
    return flags;
}

std::uint32_t FixedRate(double rate) {
    constexpr double kOne = 65536.0;
    return rate > 0 && rate < kOne ? static_cast<std::uint32_t>(std::lround(rate * kOne)) : 0;
}

std::optional<SoundFormat> ReadSoundFormat(std::span<const std::byte> description) {
    if (description.size() < sizeof(SoundDescription)) return std::nullopt;
    const auto fields = Fields<SoundDescription>(description);
    SoundFormat format;
    format.data_format = fields.dataFormat;
    format.version = fields.version;
    format.channels = static_cast<std::uint16_t>(fields.numChannels);
    format.bits = static_cast<std::uint16_t>(fields.sampleSize);
    format.rate = fields.sampleRate / kFixedOne;
    format.compression_id = fields.compressionID;
    format.extensions = ExtensionsOf(description, sizeof(SoundDescription));
    if (fields.version == 1 && description.size() >= sizeof(SoundDescriptionV1)) {
        const auto first = Fields<SoundDescriptionV1>(description);
        format.frames_per_packet = first.samplesPerPacket;
        format.bytes_per_packet =
            first.bytesPerFrame != 0 ? first.bytesPerFrame : first.bytesPerPacket * format.channels;
        format.extensions = ExtensionsOf(description, sizeof(SoundDescriptionV1));
    } else if (fields.version == 2 && description.size() >= sizeof(SoundDescriptionV2)) {
        const auto second = Fields<SoundDescriptionV2>(description);
        format.rate = second.audioSampleRate;
        format.channels = second.numAudioChannels;
        format.bits = second.constBitsPerChannel;
        format.lpcm_flags = second.formatSpecificFlags;
        format.bytes_per_packet = second.constBytesPerAudioPacket;
        format.frames_per_packet = second.constLPCMFramesPerAudioPacket;
        format.extensions =
            ExtensionsOf(description, std::max<std::size_t>(second.sizeOfStructOnly, sizeof(second)));
    }
    if (!(format.rate >= 0) || format.rate > kMaximumRate) format.rate = 0;
    // MPEG-4 files say two channels however many there are.
    if (format.data_format == Code("mp4a") && format.version == 0)
        if (const std::uint32_t channels = AacChannelsIn(format.extensions); channels > 0)
            format.channels = channels;
    FillPackets(format);
    return format;
}

std::optional<PcmLayout> LayoutOf(std::span<const std::byte> description) {
    const auto format = ReadSoundFormat(description);
    if (!format.has_value() || format->channels == 0 || format->channels > 256) return std::nullopt;
    PcmLayout layout;
    layout.channels = format->channels;
    layout.rate = static_cast<std::uint32_t>(std::lround(format->rate));
    switch (format->data_format) {
    case Code("lpcm"): {
        const auto encoding = LpcmEncoding(format->bits, format->lpcm_flags);
        if (!encoding.has_value()) return std::nullopt;
        return LpcmLayout(*format, *encoding);
    }
    case Code("NONE"):
    case Code("raw "):
        layout.encoding = format->bits == 16 ? SampleEncoding::kSigned16 : SampleEncoding::kUnsigned8;
        break;
    case Code("twos"):
    case Code("sowt"): layout.encoding = SampleEncoding::kSigned16; break;
    default: {
        const auto* row = std::find_if(kSizedFormats.begin(), kSizedFormats.end(), [&](const PcmCode& sized) {
            return sized.code == format->data_format;
        });
        if (row == kSizedFormats.end()) return std::nullopt;
        layout.encoding = row->encoding;
    }
    }
    const bool little = format->data_format == Code("sowt") ||
                        BigEndian16(FindExtension(format->extensions, Code("enda")), 0) == 1;
    layout.big_endian = !little && layout.SampleBytes() > 1;
    return layout;
}

std::span<const std::byte> FindExtension(std::span<const std::byte> extensions, OSType type) {
    const auto direct = FindAtom(extensions, type);
    if (!direct.empty()) return direct;
    return FindAtom(FindAtom(extensions, Code("wave")), type);
}

StreamSetup ReadStreamSetup(std::span<const std::byte> esds) {
    // Version and flags, then descriptors: tag, size in groups of seven bits, content.
    StreamSetup setup;
    auto rest = Tail(esds, 4);
    while (rest.size() >= 2) {
        const auto tag = std::to_integer<int>(rest[0]);
        std::size_t position = 1;
        std::size_t size = 0;
        for (int i = 0; i < 4 && position < rest.size(); ++i) {
            const auto group = std::to_integer<unsigned>(rest[position++]);
            size = size << 7 | (group & 0x7F);
            if ((group & 0x80) == 0) break;
        }
        const auto content = Tail(rest, position, size);
        if (tag == 3) { // stream: identifier, flags and what they announce, then further descriptors inside
            const std::uint64_t flags = BigEndian(content, 2, 1);
            std::size_t header = 3;
            if ((flags & 0x80) != 0) header += 2;
            if ((flags & 0x40) != 0) header += 1 + static_cast<std::size_t>(BigEndian(content, header, 1));
            if ((flags & 0x20) != 0) header += 2;
            rest = Tail(content, header);
        } else if (tag ==
                   4) { // decoder: object type, stream type, buffer size, rates, then its set-up inside
            setup.object_type = static_cast<std::uint8_t>(BigEndian(content, 0, 1));
            rest = Tail(content, 13);
        } else if (tag == 5) {
            setup.bytes = content;
            break;
        } else {
            rest = Tail(rest, position + size);
        }
    }
    return setup;
}

std::uint32_t StatedBitRate(std::span<const std::byte> description) {
    const auto format = ReadSoundFormat(description);
    if (!format.has_value()) return 0;
    const auto esds = FindExtension(format->extensions, Code("esds"));
    const StreamSetup setup = ReadStreamSetup(esds);
    if (setup.object_type == 0) return 0;
    // The average rate stands in the four bytes before what follows the decoder descriptor's fixed part.
    for (std::size_t i = 4; i + 14 < esds.size(); ++i) {
        const bool decoder = std::to_integer<unsigned>(esds[i]) == setup.object_type &&
                             (std::to_integer<unsigned>(esds[i + 1]) & 0xFC) == 0x14;
        if (decoder) return BigEndian32(esds, i + 9);
    }
    return 0;
}

Bytes DescribePcm(const PcmLayout& layout) {
    if (layout.encoding == SampleEncoding::kSigned8 || layout.rate >= kFirstRateOfVersion2)
        return ToBytes(DescribePcmInVersion2(layout));
    SoundDescriptionV1 description;
    description.numChannels = static_cast<std::int16_t>(layout.channels);
    description.sampleSize = static_cast<std::int16_t>(8 * layout.SampleBytes());
    description.sampleRate = FixedRate(layout.rate);
    if (layout.encoding == SampleEncoding::kSigned16) {
        description.dataFormat = layout.big_endian ? Code("twos") : Code("sowt");
        return ToBytes(static_cast<SoundDescription>(description));
    }
    description.dataFormat = CodeOf(layout.encoding);
    if (layout.encoding == SampleEncoding::kUnsigned8)
        return ToBytes(static_cast<SoundDescription>(description));
    description.version = 1;
    description.compressionID = -1;
    description.bytesPerPacket = layout.SampleBytes();
    description.bytesPerFrame = layout.FrameBytes();
    description.bytesPerSample = layout.SampleBytes();
    if (layout.SampleBytes() == 1) description.sampleSize = 16; // companded
    const bool little = !layout.big_endian && layout.SampleBytes() > 1;
    return ToBytes(description, little ? LittleEndianExtension(description.dataFormat) : Bytes{});
}

Bytes DescribeCompressed(CompressedSound sound) {
    FillFixedPackets(sound);
    if (sound.rate >= kFirstRateOfVersion2) {
        SoundDescriptionV2 description = DescribeInVersion2(sound.data_format, sound.rate, sound.channels);
        description.constBytesPerAudioPacket = sound.bytes_per_packet;
        description.constLPCMFramesPerAudioPacket = sound.frames_per_packet;
        return ToBytes(description, ExtensionsOf(sound));
    }
    SoundDescriptionV1 description;
    description.dataFormat = sound.data_format;
    description.version = 1;
    description.numChannels = static_cast<std::int16_t>(sound.channels);
    description.sampleSize = 16;
    description.compressionID = sound.bytes_per_packet != 0 ? -1 : -2;
    description.sampleRate = FixedRate(sound.rate);
    description.samplesPerPacket = std::max(1U, sound.frames_per_packet);
    description.bytesPerPacket = sound.channels != 0 ? sound.bytes_per_packet / sound.channels : 0;
    description.bytesPerFrame = sound.bytes_per_packet;
    description.bytesPerSample = 2;
    return ToBytes(description, ExtensionsOf(sound));
}

std::optional<Bytes> SoundDescriptionFromFile(std::span<const std::byte> entry, std::uint32_t time_scale) {
    if (entry.size() < sizeof(SoundDescription)) return std::nullopt;
    SoundDescription fields;
    fields.dataFormat = BigEndian32(entry, 4);
    fields.dataRefIndex = static_cast<std::int16_t>(BigEndian16(entry, 14));
    fields.version = static_cast<std::int16_t>(BigEndian16(entry, 16));
    fields.revlevel = static_cast<std::int16_t>(BigEndian16(entry, 18));
    fields.vendor = BigEndian32(entry, 20);
    fields.numChannels = static_cast<std::int16_t>(BigEndian16(entry, 24));
    fields.sampleSize = static_cast<std::int16_t>(BigEndian16(entry, 26));
    fields.compressionID = static_cast<std::int16_t>(BigEndian16(entry, 28));
    fields.packetSize = static_cast<std::int16_t>(BigEndian16(entry, 30));
    fields.sampleRate = BigEndian32(entry, 32);
    Bytes bytes;
    if (fields.version == 1 && entry.size() >= sizeof(SoundDescriptionV1)) {
        SoundDescriptionV1 first;
        static_cast<SoundDescription&>(first) = fields;
        first.samplesPerPacket = BigEndian32(entry, 36);
        first.bytesPerPacket = BigEndian32(entry, 40);
        first.bytesPerFrame = BigEndian32(entry, 44);
        first.bytesPerSample = BigEndian32(entry, 48);
        bytes = ToBytes(first, Tail(entry, sizeof(first)));
    } else if (fields.version == 2 && entry.size() >= sizeof(SoundDescriptionV2)) {
        SoundDescriptionV2 second;
        static_cast<SoundDescription&>(second) = fields;
        const std::size_t size = BigEndian32(entry, 36);
        second.audioSampleRate = std::bit_cast<double>(BigEndian(entry, 40, 8));
        second.numAudioChannels = BigEndian32(entry, 48);
        second.constBitsPerChannel = BigEndian32(entry, 56);
        second.formatSpecificFlags = BigEndian32(entry, 60);
        second.constBytesPerAudioPacket = BigEndian32(entry, 64);
        second.constLPCMFramesPerAudioPacket = BigEndian32(entry, 68);
        bytes = ToBytes(second, Tail(entry, std::max(size, sizeof(second))));
    } else if (fields.sampleRate == 0 && time_scale >= kFirstRateOfVersion2) {
        const auto channels = static_cast<std::uint16_t>(fields.numChannels);
        SoundDescriptionV2 second = DescribeInVersion2(fields.dataFormat, time_scale, channels);
        second.dataRefIndex = fields.dataRefIndex;
        second.constBitsPerChannel = static_cast<std::uint16_t>(fields.sampleSize);
        bytes = ToBytes(second, Tail(entry, sizeof(fields)));
    } else {
        fields.version = 0;
        bytes = ToBytes(fields, Tail(entry, sizeof(fields)));
    }
    const bool signed8 =
        (fields.dataFormat == Code("twos") || fields.dataFormat == Code("sowt")) && fields.sampleSize <= 8;
    if (!signed8) return bytes;
    const auto channels = static_cast<std::uint16_t>(fields.numChannels);
    SoundDescriptionV2 described =
        DescribePcmInVersion2({SampleEncoding::kSigned8, false, channels, fields.sampleRate >> 16});
    described.dataRefIndex = fields.dataRefIndex;
    return ToBytes(described);
}

Bytes SoundDescriptionToFile(std::span<const std::byte> description) {
    const auto fields = Fields<SoundDescription>(description);
    AtomWriter writer;
    writer.Put32(static_cast<std::uint32_t>(description.size()));
    writer.Put32(fields.dataFormat);
    writer.Zeros(6);
    for (const std::int16_t field : {fields.dataRefIndex, fields.version, fields.revlevel})
        writer.Put16(static_cast<std::uint16_t>(field));
    writer.Put32(fields.vendor);
    for (const std::int16_t field :
         {fields.numChannels, fields.sampleSize, fields.compressionID, fields.packetSize})
        writer.Put16(static_cast<std::uint16_t>(field));
    writer.Put32(fields.sampleRate);
    std::size_t written = sizeof(SoundDescription);
    if (fields.version == 1 && description.size() >= sizeof(SoundDescriptionV1)) {
        const auto first = Fields<SoundDescriptionV1>(description);
        for (const std::uint32_t field :
             {first.samplesPerPacket, first.bytesPerPacket, first.bytesPerFrame, first.bytesPerSample})
            writer.Put32(field);
        written = sizeof(first);
    } else if (fields.version == 2 && description.size() >= sizeof(SoundDescriptionV2)) {
        const auto second = Fields<SoundDescriptionV2>(description);
        writer.Put32(sizeof(second));
        writer.Put64(std::bit_cast<std::uint64_t>(second.audioSampleRate));
        for (const std::uint32_t field :
             {second.numAudioChannels, second.always7F000000, second.constBitsPerChannel,
              second.formatSpecificFlags, second.constBytesPerAudioPacket,
              second.constLPCMFramesPerAudioPacket})
            writer.Put32(field);
        written = sizeof(second);
    }
    writer.Put(Tail(description, written));
    return writer.Take();
}

} // namespace qt
