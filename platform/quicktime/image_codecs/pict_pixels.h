// The pixel maps of QuickDraw pictures: header, colours, and rows in every packing.
#pragma once

#include "platform/quicktime/image_codecs/pict_format.h"
#include "platform/quicktime/image_codecs/raster.h"

namespace qt {

struct PixelMap {
    Rect bounds;
    std::size_t row_bytes = 0;
    unsigned pixel_size = 1; ///< bits: 1, 2, 4, 8 (indices), 16 or 32
    unsigned components = 1; ///< of 32-bit pixels: 3, or 4 with alpha
    unsigned pack_type = 0;  ///< 1 none, 2 without the unused byte, 3 words, 4 a plane a component, 0 usual
    bool is_bitmap = true;   ///< one bit without colours of its own
    Palette palette{};       ///< of indices
    Fixed horizontal_resolution = 72 << 16;
    Fixed vertical_resolution = 72 << 16;

    [[nodiscard]] std::int32_t Width() const { return bounds.right - bounds.left; }
    [[nodiscard]] std::int32_t Height() const { return bounds.bottom - bounds.top; }
    [[nodiscard]] bool HasAlpha() const { return pixel_size == 32 && components == 4; }
};

/// Reads the header and colours of what a bits operation draws. False when it is none that could be drawn:
/// the operation's end is unknown then.
bool ReadPixelMap(PictCursor& cursor, std::uint32_t operation, PixelMap& map);
/// The same for the map of a pixel pattern, whose rows are bare and whose colours follow behind it.
bool ReadPatternMap(PictCursor& cursor, PixelMap& map);
void ReadColourTable(PictCursor& cursor, Palette& palette);

/// The rows of a map, one after the other.
class PixelRows {
public:
    /// Borrows both. `packed`: as the map's packing and width say; else every row is bare.
    PixelRows(const PixelMap& map, bool packed, PictCursor& cursor);

    /// The next row's pixels, map.Width() of them. False at the end of the data.
    bool Next(std::uint32_t* pixels);
    /// Steps over a row.
    bool Skip();

private:
    enum class Packing { kNone, kDropped, kBytes, kWords, kPlanes };

    std::span<const std::byte> TakeRow();
    [[nodiscard]] bool CountsAre(bool words);
    void Convert(const std::byte* row, std::size_t size, std::uint32_t* pixels) const;

    const PixelMap& map_;
    PictCursor& cursor_;
    Packing packing_ = Packing::kBytes;
    bool word_counts_; ///< in front of packed rows; else bytes
    std::vector<std::byte> row_;
};

} // namespace qt
