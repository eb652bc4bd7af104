#pragma once

#include <cstddef>
#include <span>

namespace qt {

/// Dots per inch; 0 where unknown.
struct Resolution {
    double horizontal = 0.0;
    double vertical = 0.0;
};

/// The resolution of the first directory of an EXIF block, given from its byte-order mark on.
Resolution ExifResolution(std::span<const std::byte> block);

} // namespace qt
