#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace qt {

/// Dots per inch; 0 where unknown.
struct Resolution {
    double horizontal = 0.0;
    double vertical = 0.0;
};

/// The resolution of the first directory of an EXIF block, given from its byte-order mark on.
Resolution ExifResolution(std::span<const std::byte> block);

/// Puts dots per inch over the values that the block has; those that it lacks are not added.
void SetExifResolution(std::span<std::byte> block, std::uint32_t horizontal, std::uint32_t vertical);

} // namespace qt
