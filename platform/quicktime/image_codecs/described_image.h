// An image that an image description introduces, as QuickTime image files and pictures hold them: stored
// plainly, or in any format that a codec reads.
#pragma once

#include "platform/quicktime/image_codecs/codec.h"

namespace qt {

inline constexpr std::size_t kImageDescriptionSize = 86; ///< bytes without extensions and colours

struct DescribedImage {
    ImageDescription description;
    std::uint64_t data_size = 0;    ///< bytes of data as described; 0 when it is not told
    std::vector<std::byte> colours; ///< the colour table behind the description, if there is one
};

/// Reads a description from its size on. False when it is cut, or its dimensions are not positive.
bool ReadImageDescription(std::span<const std::byte> bytes, DescribedImage& image);

/// Decodes the data. codecBadDataErr also for formats that hold pictures or image files in their turn, so
/// that nothing nests without end.
ComponentResult DecodeDescribedImage(const DescribedImage& described, DataSource& data, PixelImage& image);

} // namespace qt
