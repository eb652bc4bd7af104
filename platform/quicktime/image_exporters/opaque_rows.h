#pragma once

#include "platform/quicktime/pixel_image.h"

namespace qt {

/// The pixels of a row in front of white, all opaque: the image's own row when it has no alpha, else
/// `scratch` (of the image's width), which is filled.
const std::uint32_t* OpaqueRow(const PixelImage& image, std::int32_t y, std::uint32_t* scratch);

} // namespace qt
