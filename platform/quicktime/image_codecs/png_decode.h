#pragma once

#include "platform/quicktime/data_source.h"
#include "platform/quicktime/pixel_image.h"

namespace qt {

/// The decode operation of the PNG codec. Samples of 16 bits are rounded to 8; the gamma and colour profile
/// that a file states are left alone.
ComponentResult DecodePng(DataSource& source, std::uint32_t index, PixelImage& image);

} // namespace qt
