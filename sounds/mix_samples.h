// Mixing two blocks of samples: the average of each pair, halves rounded toward minus infinity.
#pragma once

#include "platform/quicktime/types.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace corvane {

/// Averages `first` into `second`, sample by sample; both are of this format and channel count.
/// Codes: 0, -50 when the blocks differ in size, -4 for other than 1 or 2 channels of 'sowt', 'twos' or
/// 'raw ' samples. The blocks may not overlap.
std::int32_t MixSamples(std::span<const std::byte> first, std::span<std::byte> second, OSType format,
                        std::uint32_t channels);

} // namespace corvane
