#pragma once

#include "platform/quicktime/pixel_image.h"
#include "platform/quicktime/transform_bands.h"

namespace qt {

/// How much work a pass over the image is.
inline std::int64_t PixelCount(const PixelImage& image) {
    return std::int64_t{image.width()} * image.height();
}

/// Calls work(y) for each row of the image, on several threads when it is large.
template <class Work>
void EachRow(const PixelImage& image, Work work) {
    DrawInBands(image.height(), PixelCount(image), [&work](std::int32_t first, std::int32_t end) {
        for (std::int32_t y = first; y < end; ++y) work(y);
    });
}

} // namespace qt
