#pragma once

#include "platform/quicktime/data_source.h"
#include "platform/quicktime/pixel_image.h"

namespace qt {

/// The decode operation of the JPEG codec. Colours of four inks become red, green and blue by subtraction;
/// the orientation that an EXIF block asks for is left to viewers.
ComponentResult DecodeJpeg(DataSource& source, std::uint32_t index, PixelImage& image);

} // namespace qt
