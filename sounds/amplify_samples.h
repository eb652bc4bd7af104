// Amplifying 16-bit samples in place: scale in single precision, clip, cut off the fraction.
// Factors and limits are finite numbers.
#pragma once

#include "platform/quicktime/types.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace corvane {

/// A limit of exactly this value asks for normalisation: whatever the factor, the peak becomes 32,767.
inline constexpr float kNormaliseLimit = -1.0F;

/// Amplifies the first `frames` frames of a block. Of stereo sound both channels are done; with any other
/// channel count the first `frames` samples are, as one channel. Frames beyond the block's end don't count.
/// Codes: 0, -4 for 8-bit samples, -2001 for other formats.
std::int32_t AmplifyBlock(std::span<std::byte> block, OSType format, std::uint32_t channels,
                          std::size_t frames, float factor, float limit);

/// Largest magnitude of all samples. -32768 has none in 16 bits and is passed over. A trailing odd byte is
/// no sample, here and below.
std::int16_t FindPeak(std::span<const std::byte> samples, std::endian order);

/// 1 for silence.
float NormalisingFactor(std::int16_t peak);

/// With L = 32767 times the limit, which is first brought into 0..1, samples are clipped to -L - 1..L.
void AmplifySamples(std::span<std::byte> samples, std::endian order, float factor, float limit);

} // namespace corvane
