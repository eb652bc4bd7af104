#pragma once

#include "platform/quicktime/pixel_image.h"

namespace qt {

/// The mean of a part of an image that lies within it and isn't empty; colours count as much as they are
/// seen.
std::uint32_t AreaMean(const PixelImage& image, const Rect& part);

} // namespace qt
