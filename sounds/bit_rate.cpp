#include "sounds/bit_rate.h"

#include "platform/quicktime/movie_toolbox.h"
#include "platform/quicktime/movies/atoms.h"
#include "platform/quicktime/movies/sound_description.h"

#include <cstring>

namespace corvane {
namespace {

constexpr OSType kAac = qt::Code("mp4a");
constexpr std::int16_t kVaryingPackets = -2;

// Whether the media layer can tell the bit rate of AAC.
bool KnowsAacBitRate() {
    std::int32_t version = 0;
    return Gestalt(qt::Code("qtim"), &version) == noErr && version >> 16 >= 0x0710;
}

std::optional<double> AacBitRate(Handle description) {
    const std::uint32_t rate = KnowsAacBitRate() ? qt::StatedBitRate(qt::HandleBytes(description)) : 0;
    if (rate == 0) return std::nullopt;
    return rate / 1000.0 + 0.5;
}

// Average of the WAVE format structure (little-endian) that the 'wave' extension holds under the code that
// its 'frma' atom names. Of atoms of one type the last counts.
std::optional<double> WaveBitRate(Handle description) {
    const qt::MemoryHandle extension(NewHandle(0));
    if (!extension) return std::nullopt;
    if (GetSoundDescriptionExtension(description, extension.get(), qt::Code("wave")) != noErr)
        return std::nullopt;
    const auto last_atom = [&](OSType type) {
        std::span<const std::byte> found;
        for (qt::AtomWalk walk(qt::HandleBytes(extension.get())); walk.Next();)
            if (walk.Type() == type) found = walk.Data();
        return found;
    };
    constexpr std::size_t kAverageBytes = 8;
    const auto format = last_atom(qt::Code("frma"));
    const auto wave = format.size() >= 4 ? last_atom(qt::BigEndian32(format, 0)) : format;
    if (wave.size() < kAverageBytes + 4) return 0;
    std::uint32_t bytes_per_second = 0;
    for (std::size_t i = 0; i < 4; ++i)
        bytes_per_second |= std::to_integer<std::uint32_t>(wave[kAverageBytes + i]) << (8 * i);
    return bytes_per_second * 8.0 / 1000 + 0.5;
}

} // namespace

std::optional<double> BitRateOf(Handle description) {
    const auto format = qt::ReadSoundFormat(qt::HandleBytes(description));
    if (format && format->data_format == kAac) return AacBitRate(description);
    const qt::MemoryHandle converted(NewHandle(0));
    if (!converted || QTSoundDescriptionConvertToV1(description, converted.get()) != noErr)
        return std::nullopt;
    SoundDescriptionV1 fields;
    const auto bytes = qt::HandleBytes(converted.get());
    if (bytes.size() < sizeof fields) return std::nullopt;
    std::memcpy(&fields, bytes.data(), sizeof fields);
    if (fields.compressionID == kVaryingPackets && bytes.size() > sizeof fields)
        return WaveBitRate(converted.get());
    // Version 1 has no rate from 65,536 Hz on.
    if (fields.samplesPerPacket == 0 || fields.sampleRate == 0) return std::nullopt;
    return fields.numChannels * 8.0 * fields.bytesPerPacket * (fields.sampleRate / 65536.0) /
               (fields.samplesPerPacket * 1000.0) +
           0.5;
}

} // namespace corvane
