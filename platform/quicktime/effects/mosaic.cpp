#include "platform/quicktime/effects/area_mean.h"
#include "platform/quicktime/effects/effect.h"
#include "platform/quicktime/effects/rows.h"

#include <array>

namespace qt {
namespace {

constexpr std::array kParameters = {WholeParameter("size", "Size of a tile", 1, 1000, 16, kPixelUnit)};

void Render(const EffectInput& input, PixelImage& out) {
    const std::int32_t size = input.values.Whole("size");
    DrawInBands((out.height() + size - 1) / size, PixelCount(out),
                [&](std::int32_t first, std::int32_t last) {
                    for (std::int32_t y = first * size; y < std::min(last * size, out.height()); y += size) {
                        for (std::int32_t x = 0; x < out.width(); x += size) {
                            const Rect tile = {static_cast<std::int16_t>(y), static_cast<std::int16_t>(x),
                                               static_cast<std::int16_t>(std::min(y + size, out.height())),
                                               static_cast<std::int16_t>(std::min(x + size, out.width()))};
                            const std::uint32_t mean = AreaMean(input.a, tile);
                            for (std::int32_t row = tile.top; row < tile.bottom; ++row)
                                std::fill(out.Row(row) + tile.left, out.Row(row) + tile.right, mean);
                        }
                    }
                });
}

} // namespace

const Effect kMosaicEffect = {Code("mosa"), "Mosaic", kFilterClass, kTextureClass, 1, kParameters, Render};

} // namespace qt
