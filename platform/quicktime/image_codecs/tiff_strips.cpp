#include "platform/quicktime/image_codecs/tiff_strips.h"

namespace qt {

TiffStrips::TiffStrips(TIFF* tiff, const TiffLayout& layout, DataSource& source)
    : tiff_(tiff), source_(source), bits_(layout.bits) {
    g_tiff->GetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &rows_of_strip_);
    g_tiff->GetFieldDefaulted(tiff, TIFFTAG_FILLORDER, &bit_order_);
    is_plain_ = layout.compression == COMPRESSION_NONE && rows_of_strip_ > 0;
}

bool TiffStrips::ReadRow(std::uint32_t y, std::uint16_t plane, std::span<std::byte> row) {
    return is_plain_ ? ReadPlainRow(y, plane, row) : g_tiff->ReadScanline(tiff_, row.data(), y, plane) >= 0;
}

/// Straight from the source: of a strip that is cut the library gives nothing, and the strip may be the only
/// one.
bool TiffStrips::ReadPlainRow(std::uint32_t y, std::uint16_t plane, std::span<std::byte> row) {
    const std::uint64_t strip = g_tiff->GetStrileOffset(tiff_, g_tiff->ComputeStrip(tiff_, y, plane));
    const std::uint64_t offset = std::uint64_t{y % rows_of_strip_} * row.size();
    if (strip == 0 || source_.Read(strip + offset, row) != row.size()) return false;
    const auto size = static_cast<tmsize_t>(row.size());
    void* bytes = row.data();
    if (bit_order_ == FILLORDER_LSB2MSB) g_tiff->ReverseBits(static_cast<std::uint8_t*>(bytes), size);
    if (g_tiff->IsByteSwapped(tiff_) == 0) return true;
    if (bits_ == 16) g_tiff->SwabArrayOfShort(static_cast<std::uint16_t*>(bytes), size / 2);
    if (bits_ == 32) g_tiff->SwabArrayOfLong(static_cast<std::uint32_t*>(bytes), size / 4);
    if (bits_ == 64) g_tiff->SwabArrayOfLong8(static_cast<std::uint64_t*>(bytes), size / 8);
    return true;
}

} // namespace qt
