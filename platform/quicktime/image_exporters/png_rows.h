// The rows of a PNG image: pixels packed, filtered and in the order of the format's passes.
#pragma once

#include "platform/quicktime/image_exporters/quantise.h"
#include "platform/quicktime/pixel_image.h"

#include <vector>

namespace qt {

/// Where pixels come from, and how many bits each takes: 1, 2, 4 or 8 with an indexed image; 8 for grey, 24,
/// or 32 with alpha without one. Both images outlive it.
struct PngPixels {
    const PixelImage* image;
    const IndexedImage* indexed; ///< null: the image's own pixels
    unsigned bits;
};

/// All rows, each behind the number of its filter, chosen for each row by the size of the differences that
/// it leaves; indexed ones are not filtered. Throws std::bad_alloc.
std::vector<std::uint8_t> PngRows(const PngPixels& pixels, bool interlaced);

} // namespace qt
