#pragma once

#include "platform/quicktime/effects/effect.h"
#include "platform/quicktime/effects/rows.h"

#include <algorithm>
#include <vector>

namespace qt {

/// Rows of source B as wide as source A, with nothing where B does not reach: B is used at its own size.
class SecondSource {
public:
    SecondSource(const PixelImage& image, std::int32_t width) : image_(image), width_(width) {}

    /// Row `y` moved `right` pixels to the right, good until the next call.
    const std::uint32_t* Row(std::int32_t y, std::int32_t right = 0) {
        if (y >= 0 && y < image_.height() && right == 0 && image_.width() >= width_) return image_.Row(y);
        padded_.assign(static_cast<std::size_t>(width_), kNothing);
        const std::int32_t first = std::max(right, 0);
        const std::int32_t last = std::min(image_.width() + right, width_);
        if (y >= 0 && y < image_.height() && first < last)
            std::copy(image_.Row(y) + (first - right), image_.Row(y) + (last - right),
                      padded_.begin() + first);
        return padded_.data();
    }

private:
    static constexpr std::uint32_t kNothing = 0x00FF'FFFF;

    const PixelImage& image_;
    std::int32_t width_;
    std::vector<std::uint32_t> padded_;
};

/// out = combine(a, b, x, y) for all pixels, in bands on several threads.
template <class Combine>
void EachPair(const EffectInput& input, PixelImage& out, Combine combine) {
    DrawInBands(out.height(), PixelCount(out), [&](std::int32_t first, std::int32_t last) {
        SecondSource second(*input.b, out.width());
        for (std::int32_t y = first; y < last; ++y) {
            const std::uint32_t* a = input.a.Row(y);
            const std::uint32_t* b = second.Row(y);
            std::uint32_t* row = out.Row(y);
            for (std::int32_t x = 0; x < out.width(); ++x) row[x] = combine(a[x], b[x], x, y);
        }
    });
}

} // namespace qt
