#pragma once

#include "platform/quicktime/pixel_image.h"

#include <functional>

namespace qt {

/// Calls work(first, last) for parts of the range from 0 to `count`: on a thread for each processor when the
/// image is large, else once. Back when all is done; throws what `work` throws.
void InBands(const PixelImage& image, std::int32_t count,
             const std::function<void(std::int32_t, std::int32_t)>& work);

/// The same over the rows of an image, one at a time.
template <class Work>
void EachRow(const PixelImage& image, Work work) {
    InBands(image, image.height(), [&work](std::int32_t first, std::int32_t last) {
        for (std::int32_t y = first; y < last; ++y) work(y);
    });
}

} // namespace qt
