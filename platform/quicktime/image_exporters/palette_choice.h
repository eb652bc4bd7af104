// The colours that stand for an image best.
#pragma once

#include "platform/quicktime/pixel_image.h"

#include <vector>

namespace qt {

/// At most `count` opaque colours, chosen by cutting the colour cube where that lessens the variance most
/// (Wu, "Efficient Statistical Computations for Optimal Color Quantization"). Pixels that are less than half
/// opaque don't count. Throws std::bad_alloc.
std::vector<std::uint32_t> ChoosePalette(const PixelImage& image, std::size_t count);

} // namespace qt
