#pragma once

#include "platform/quicktime/pixel_image.h"

namespace qt {

/// A Gaussian blur: `sigma` is its standard deviation in pixels, 0 to 100. Beyond the edges the outermost
/// pixels go on. `out` is allocated, of the same size, and may be `in` itself. May throw std::bad_alloc.
void GaussianBlur(const PixelImage& in, double sigma, PixelImage& out);

} // namespace qt
