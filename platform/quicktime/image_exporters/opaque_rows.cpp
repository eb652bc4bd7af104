#include "platform/quicktime/image_exporters/opaque_rows.h"

namespace qt {
namespace {

/// Rounded n / 255 for products of two 8-bit values.
constexpr std::uint32_t Divide255(std::uint32_t n) {
    return (n + 128 + ((n + 128) >> 8)) >> 8;
}

constexpr std::uint32_t OnWhite(std::uint32_t pixel) {
    const std::uint32_t alpha = Alpha(pixel);
    const std::uint32_t white = 255 - alpha;
    return Pixel(Divide255(Red(pixel) * alpha) + white, Divide255(Green(pixel) * alpha) + white,
                 Divide255(Blue(pixel) * alpha) + white);
}

} // namespace

const std::uint32_t* OpaqueRow(const PixelImage& image, std::int32_t y, std::uint32_t* scratch) {
    const std::uint32_t* row = image.Row(y);
    if (!image.has_alpha) return row;
    for (std::int32_t x = 0; x < image.width(); ++x) scratch[x] = OnWhite(row[x]);
    return scratch;
}

} // namespace qt
