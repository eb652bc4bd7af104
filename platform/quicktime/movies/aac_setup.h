// How many channels an AAC decoder gives, of its set-up: the AudioSpecificConfig of ISO/IEC 14496-3, 1.6.2.1.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace qt {

/// 0 when the set-up doesn't tell: nothing is there, the kind of AAC has another one, or one channel may yet
/// be made two by what only the packets have (parametric stereo).
std::uint32_t AacChannels(std::span<const std::byte> setup);

} // namespace qt
