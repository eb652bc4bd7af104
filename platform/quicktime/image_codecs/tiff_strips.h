// Rows of TIFF strips as they are stored, unpacked.
#pragma once

#include "platform/quicktime/image_codecs/tiff_file.h"

namespace qt {

class TiffStrips {
public:
    /// Of the image at which the file stands, whose source that is. All of them must outlive the strips.
    TiffStrips(TIFF* tiff, const TiffLayout& layout, DataSource& source);

    /// Reads a row of the library's size, words in native order; false when it is missing. Compressed rows
    /// are read from top to bottom. `plane`: the sample, of images that have each sample's rows for
    /// themselves.
    [[nodiscard]] bool ReadRow(std::uint32_t y, std::uint16_t plane, std::span<std::byte> row);

private:
    bool ReadPlainRow(std::uint32_t y, std::uint16_t plane, std::span<std::byte> row);

    TIFF* tiff_;
    DataSource& source_;
    std::uint16_t bits_;
    bool is_plain_ = false;
    std::uint32_t rows_of_strip_ = 0;
    std::uint16_t bit_order_ = FILLORDER_MSB2LSB;
};

} // namespace qt
