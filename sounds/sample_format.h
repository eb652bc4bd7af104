// Layouts of the uncompressed samples that the sound functions compute with. Channels are interleaved; a
// frame holds one sample of each channel.
#pragma once

#include "platform/quicktime/types.h"
#include "plugin/errors.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

namespace corvane {

inline constexpr OSType kRawFormat = qt::Code("raw ");   ///< unsigned 8-bit, 128 is silence
inline constexpr OSType kTwosFormat = qt::Code("twos");  ///< signed 16-bit, big-endian
inline constexpr OSType kSowtFormat = qt::Code("sowt");  ///< signed 16-bit, little-endian
inline constexpr OSType kFloatFormat = qt::Code("fl32"); ///< 32-bit float, big-endian

inline constexpr std::int32_t kErrorUnknownSampleFormat = -2001;

/// Byte order of a 16-bit format; nothing for all other formats.
constexpr std::optional<std::endian> SixteenBitOrder(OSType format) {
    if (format == kTwosFormat) return std::endian::big;
    if (format == kSowtFormat) return std::endian::little;
    return std::nullopt;
}

/// Why code that needs 16-bit samples refuses a format: it knows 8-bit samples but can't do them.
constexpr std::int32_t RefusalOfFormat(OSType format) {
    return format == kRawFormat ? kErrorNotImplemented : kErrorUnknownSampleFormat;
}

inline constexpr std::size_t kSixteenBitBytes = 2;

/// Converts between a byte order and the machine's; its own inverse.
template <std::endian kOrder>
constexpr std::uint16_t InOrder(std::uint16_t bits) {
    if constexpr (kOrder == std::endian::native) return bits;
    return static_cast<std::uint16_t>(bits << 8 | bits >> 8);
}

/// The 16-bit sample at any address, odd ones included.
template <std::endian kOrder>
std::int16_t LoadSample(const std::byte* address) {
    std::uint16_t bits;
    std::memcpy(&bits, address, sizeof bits);
    return static_cast<std::int16_t>(InOrder<kOrder>(bits));
}

template <std::endian kOrder>
void StoreSample(std::byte* address, std::int16_t sample) {
    const std::uint16_t bits = InOrder<kOrder>(static_cast<std::uint16_t>(sample));
    std::memcpy(address, &bits, sizeof bits);
}

} // namespace corvane
