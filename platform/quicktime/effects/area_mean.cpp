#include "platform/quicktime/effects/area_mean.h"

#include "platform/quicktime/effects/pixel_math.h"

#include <array>

namespace qt {

std::uint32_t AreaMean(const PixelImage& image, const Rect& part) {
    std::array<std::uint64_t, 4> sums{};
    for (std::int32_t y = part.top; y < part.bottom; ++y) {
        for (std::int32_t x = part.left; x < part.right; ++x) {
            const std::uint32_t pixel = image.has_alpha ? Premultiply(image.Row(y)[x]) : image.Row(y)[x];
            sums[0] += Red(pixel);
            sums[1] += Green(pixel);
            sums[2] += Blue(pixel);
            sums[3] += Alpha(pixel);
        }
    }
    const auto count = static_cast<std::uint64_t>(part.right - part.left) *
                       static_cast<std::uint64_t>(part.bottom - part.top);
    const auto mean = [&](std::uint64_t sum) {
        return static_cast<std::uint32_t>((sum + count / 2) / count);
    };
    return Unpremultiply(Pixel(mean(sums[0]), mean(sums[1]), mean(sums[2]), mean(sums[3])));
}

} // namespace qt
