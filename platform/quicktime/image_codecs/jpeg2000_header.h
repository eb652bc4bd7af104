// What the boxes and the main header of JPEG 2000 data say, read without the codec.
#pragma once

#include "platform/quicktime/image_codecs/codec.h"

namespace qt {

/// Bytes of the data.
struct Jpeg2000Part {
    std::uint64_t at = 0;
    std::uint64_t size = 0; ///< 0 when it is absent
};

struct Jpeg2000Header {
    bool has_boxes = false; ///< a JP2 file; else the codestream alone
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint64_t tiles = 0;
    std::uint32_t components = 0;
    std::uint64_t samples = 0; ///< of all components together
    /// Where the length stands of a tile part that ends beyond the data, which breaks off there; 0: nowhere.
    std::uint64_t cut_length_at = 0;
    double precincts = 0; ///< of all components at most, where a coding style says their size
    bool is_reversible = false;
    bool has_palette = false;
    bool has_alpha = false;
    double horizontal_dpi = 0.0; ///< 0 where unknown
    double vertical_dpi = 0.0;
    Jpeg2000Part xmp;  ///< a packet
    Jpeg2000Part iptc; ///< a record
};

bool SniffJpeg2000(std::span<const std::byte> head);

/// codecBadDataErr for what is no JPEG 2000, or claims more tiles than its data can hold, or so many
/// precincts that the codec would need far more memory for them than for the image.
ComponentResult ReadJpeg2000Header(DataSource& source, Jpeg2000Header& header);

} // namespace qt
