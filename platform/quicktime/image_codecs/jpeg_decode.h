#pragma once

#include "platform/quicktime/image_codecs/codec.h"

namespace qt {

/// The decode operations of the JPEG codec. Colours of four inks become red, green and blue by subtraction;
/// the orientation that an EXIF block asks for is left to viewers.
ComponentResult DecodeJpeg(DataSource& source, std::uint32_t index, PixelImage& image);
ComponentResult DecodeJpegPart(DataSource& source, std::uint32_t index, const Rect& part,
                               std::int32_t reduction, DecodedPart& out);

} // namespace qt
