// PackBits: runs of up to 128 equal bytes in two bytes, everything else copied in pieces of up to 128 bytes.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace qt {

/// What unpacking took from the packed bytes and gave.
struct Unpacked {
    std::size_t read = 0;
    std::size_t written = 0;
};

/// Unpacks until `out` is full or the packed bytes end. A run that goes beyond the end of `out` is cut there.
Unpacked UnpackBits(std::span<const std::byte> packed, std::span<std::byte> out);
/// The same for 16-bit values: counts are of pairs of bytes.
Unpacked UnpackWords(std::span<const std::byte> packed, std::span<std::byte> out);

/// The most that packing so many bytes can give.
constexpr std::size_t PackedBound(std::size_t size) {
    return size + (size + 127) / 128;
}
/// Packs the bytes to `out`, which has room for PackedBound of them, and answers how many it wrote.
std::size_t PackBits(std::span<const std::byte> bytes, std::byte* out);
/// The same for 16-bit values, two bytes each.
std::size_t PackWords(std::span<const std::byte> words, std::byte* out);

} // namespace qt
