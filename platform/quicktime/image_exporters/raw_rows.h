// What the formats that store plain rows share.
#pragma once

#include "platform/quicktime/image_exporters/exporter.h"
#include "platform/quicktime/image_exporters/quantise.h"

namespace qt {

/// Unsigned integers, least significant byte first.
inline void AppendLittle16(EncodedBytes& out, std::uint32_t value) {
    out.push_back(static_cast<std::byte>(value));
    out.push_back(static_cast<std::byte>(value >> 8));
}
inline void AppendLittle32(EncodedBytes& out, std::uint32_t value) {
    AppendLittle16(out, value);
    AppendLittle16(out, value >> 16);
}

/// Rows of 24-bit samples of opaque pixels.
void StoreBgr(const std::uint32_t* pixels, std::int32_t count, std::byte* samples);
void StoreRgb(const std::uint32_t* pixels, std::int32_t count, std::byte* samples);

/// Quantise for formats whose palettes know no transparency: white shows through.
ComponentResult QuantiseOpaque(const PixelImage& image, std::int32_t depth, IndexedImage& out);

/// The resolution in another unit than dots per inch, of which an inch has `per_inch`; 0 for none.
double ResolutionIn(const std::optional<Fixed>& dots_per_inch, double per_inch);

} // namespace qt
