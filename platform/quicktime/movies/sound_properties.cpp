// What sound descriptions say, whatever their version.

#include "platform/quicktime/movies/atoms.h"
#include "platform/quicktime/movies/handle_bytes.h"
#include "platform/quicktime/movies/sound_description.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

AudioStreamBasicDescription StreamOf(const qt::SoundFormat& format,
                                     const std::optional<qt::PcmLayout>& layout) {
    AudioStreamBasicDescription stream;
    stream.mSampleRate = format.rate;
    stream.mFormatID = format.data_format;
    stream.mChannelsPerFrame = format.channels;
    stream.mFramesPerPacket = format.frames_per_packet;
    stream.mBytesPerPacket = format.bytes_per_packet;
    if (layout.has_value()) {
        stream.mFramesPerPacket = 1;
        stream.mBytesPerPacket = layout->FrameBytes();
        stream.mBytesPerFrame = layout->FrameBytes();
        stream.mBitsPerChannel = 8 * layout->SampleBytes();
        const bool companded = layout->encoding >= qt::SampleEncoding::kMuLaw;
        if (!companded) {
            stream.mFormatID = qt::Code("lpcm");
            stream.mFormatFlags = qt::LpcmFlags(*layout);
        }
    } else if (format.data_format == qt::Code("alac")) {
        // Set-up: size, type and version, frames in a packet, a version, then the bits of the source.
        const auto setup = qt::FindExtension(format.extensions, qt::Code("alac"));
        stream.mFramesPerPacket = qt::BigEndian32(setup, 4);
        constexpr std::array<std::uint64_t, 4> kBits = {16, 20, 24, 32};
        const auto* bits = std::find(kBits.begin(), kBits.end(), qt::BigEndian(setup, 9, 1));
        if (bits != kBits.end()) stream.mFormatFlags = static_cast<std::uint32_t>(bits - kBits.begin()) + 1;
    }
    return stream;
}

} // namespace

OSErr QTSoundDescriptionGetProperty(Handle description, OSType property_class, OSType property,
                                    Handle value) {
    const auto bytes = qt::HandleBytes(description);
    const auto format = qt::ReadSoundFormat(bytes);
    if (!format.has_value() || format->channels == 0 || format->rate == 0) return invalidSampleDescription;
    if (property_class != qt::Code("sdes")) return kQTPropertyNotSupportedErr;
    if (property == qt::Code("asbd")) {
        const AudioStreamBasicDescription stream = StreamOf(*format, qt::LayoutOf(bytes));
        return qt::SetHandleBytes(value, std::as_bytes(std::span(&stream, 1)));
    }
    const auto first_of = [&](std::initializer_list<OSType> types) {
        for (const OSType type : types)
            if (const auto found = qt::FindExtension(format->extensions, type); !found.empty()) return found;
        return std::span<const std::byte>();
    };
    std::span<const std::byte> found;
    if (property == qt::Code("kuki"))
        found = first_of({qt::Code("esds"), qt::Code("alac"), qt::Code("dfLa"), qt::Code("dOps")});
    if (property == qt::Code("clay")) found = first_of({qt::Code("chan")});
    return found.empty() ? kQTPropertyNotSupportedErr : qt::SetHandleBytes(value, found);
}

OSErr QTSoundDescriptionConvertToV1(Handle description, Handle converted) {
    const auto bytes = qt::HandleBytes(description);
    const auto format = qt::ReadSoundFormat(bytes);
    if (!format.has_value() || format->channels == 0) return invalidSampleDescription;
    if (format->version == 1) return qt::SetHandleBytes(converted, bytes);
    const AudioStreamBasicDescription stream = StreamOf(*format, qt::LayoutOf(bytes));
    SoundDescriptionV1 first;
    first.dataFormat = format->data_format;
    first.version = 1;
    first.numChannels = static_cast<std::int16_t>(format->channels);
    first.sampleSize = static_cast<std::int16_t>(stream.mBitsPerChannel != 0 ? stream.mBitsPerChannel : 16);
    first.compressionID = stream.mBytesPerPacket != 0 ? -1 : -2;
    first.sampleRate = qt::FixedRate(format->rate);
    first.samplesPerPacket = std::max(1U, stream.mFramesPerPacket);
    first.bytesPerPacket = stream.mBytesPerPacket / format->channels;
    first.bytesPerFrame = stream.mBytesPerPacket;
    first.bytesPerSample = std::max(1U, stream.mBitsPerChannel / 8);
    first.descSize = static_cast<std::int32_t>(sizeof(first) + format->extensions.size());
    SetHandleSize(converted, first.descSize);
    if (const OSErr code = MemError(); code != noErr) return code;
    const auto target = qt::HandleBytes(converted);
    std::memcpy(target.data(), &first, sizeof(first));
    std::ranges::copy(format->extensions, target.begin() + sizeof(first));
    return noErr;
}

OSErr GetSoundDescriptionExtension(Handle description, Handle extension, OSType type) {
    const auto format = qt::ReadSoundFormat(qt::HandleBytes(description));
    if (!format.has_value()) return invalidSampleDescription;
    const auto found = qt::FindAtom(format->extensions, type);
    return found.empty() ? kQTPropertyNotSupportedErr : qt::SetHandleBytes(extension, found);
}
