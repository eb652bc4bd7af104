// Images of few colours, for formats and depths that have no more.
#pragma once

#include "platform/quicktime/pixel_image.h"

#include <vector>

namespace qt {

/// Rows of one byte a pixel, without gaps, each an index into the palette (0xAARRGGBB).
struct IndexedImage {
    std::int32_t width;
    std::int32_t height;
    std::vector<std::uint32_t> palette;
    std::vector<std::uint8_t> indices;
};

/// Brings an image to at most 2, 4, 16 or 256 colours (depths 1, 2, 4, 8), or to that many levels of grey
/// from black to white (33, 34, 36, 40).
///
/// An image that has no more colours than that keeps them exactly, its palette as short as they are. Else
/// the palette is chosen from its colours (black and white at depth 1), and error diffusion makes up for
/// those that are missing. A pixel that is less than half opaque becomes the palette's one transparent colour
/// 0, which is there only when some pixel needs it; other pixels become opaque. Depth 1 with more than two
/// colours and the levels of grey know no transparency: what shows through is white.
///
/// paramErr for another depth, memFullErr.
ComponentResult Quantise(const PixelImage& image, std::int32_t depth, IndexedImage& out);

} // namespace qt
