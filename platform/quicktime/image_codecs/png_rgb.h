// PNG pixel data of the commonest kind, 8-bit RGB that is not interlaced, decoded at once.
#pragma once

#include "platform/quicktime/data_source.h"
#include "platform/quicktime/pixel_image.h"

namespace qt {

/// Decodes the data chunks of which the first begins at that offset into an image of the right size. Takes
/// half the time of decoding piece by piece, but knows only data that is complete and right: false for any
/// other, whose rows are still to be had piece by piece.
bool DecodeWholeRgb(DataSource& source, std::uint64_t first_chunk, PixelImage& image) noexcept;

} // namespace qt
