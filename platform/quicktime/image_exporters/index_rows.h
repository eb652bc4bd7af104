// Rows of indices or bits as files store them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace qt {

/// Packs indices of 1, 2, 4 or 8 bits, the leftmost into the highest bits of a byte; bits behind the last are
/// 0.
void PackIndices(std::span<const std::uint8_t> indices, unsigned bits, std::byte* out);

} // namespace qt
