#include "platform/quicktime/image_codecs/jpeg_decode.h"

#include "platform/quicktime/image_codecs/jpeg_reader.h"
#include "platform/quicktime/image_codecs/raster.h"

#include <algorithm>
#include <array>

namespace qt {
namespace {

/// Rows that a call of the library may give at once.
constexpr JDIMENSION kBatch = 16;

/// False when the library refuses the data.
bool Begin(JpegReader& reader) {
    if (setjmp(reader.failed) != 0) return false;
    ReadJpegHeader(reader);
    jpeg_decompress_struct& jpeg = reader.decompress;
    if (jpeg.jpeg_color_space == JCS_UNKNOWN) return false;
    const bool inks = jpeg.jpeg_color_space == JCS_CMYK || jpeg.jpeg_color_space == JCS_YCCK;
    jpeg.out_color_space = inks ? JCS_CMYK : JCS_EXT_BGRA;
    return true;
}

/// Reads rows while there are any. A scan that breaks off does not end it; false when the library gives up.
bool ReadRows(JpegReader& reader, PixelImage& image) {
    if (setjmp(reader.failed) != 0) return false;
    jpeg_decompress_struct& jpeg = reader.decompress;
    jpeg_start_decompress(&jpeg);
    while (jpeg.output_scanline < jpeg.output_height) {
        std::array<JSAMPROW, kBatch> rows;
        const JDIMENSION count = std::min(kBatch, jpeg.output_height - jpeg.output_scanline);
        for (JDIMENSION i = 0; i < count; ++i) {
            rows[i] =
                reinterpret_cast<JSAMPROW>(image.Row(static_cast<std::int32_t>(jpeg.output_scanline + i)));
        }
        jpeg_read_scanlines(&jpeg, rows.data(), count);
    }
    return true;
}

/// Four inks in memory order to a pixel. Files with an Adobe marker hold 255 for no ink.
void ConvertInks(PixelImage& image, bool inverted) {
    for (std::int32_t y = 0; y < image.height(); ++y) {
        std::uint32_t* row = image.Row(y);
        for (std::int32_t x = 0; x < image.width(); ++x) {
            const std::uint32_t inks = inverted ? row[x] : ~row[x]; // little-endian: cyan lowest
            const std::uint32_t black = inks >> 24;
            const auto tone = [&](unsigned shift) { return ((inks >> shift & 0xFF) * black + 127) / 255; };
            row[x] = Pixel(tone(0), tone(8), tone(16));
        }
    }
}

ComponentResult Decode(JpegReader& reader, PixelImage& image) {
    if (!Begin(reader)) return codecBadDataErr;
    const jpeg_decompress_struct& jpeg = reader.decompress;
    ImageDescription description;
    if (const auto code = SetDimensions(description, jpeg.image_width, jpeg.image_height); code != noErr)
        return code;
    constexpr std::uint32_t kMostPixelsPerByte = 512; // a bit for each block of 64
    const std::uint64_t size = reader.source->GetSize();
    if (!DataHolds(size, jpeg.image_width, jpeg.image_height, kMostPixelsPerByte)) return codecBadDataErr;
    if (const auto code = AllocateFor(description, image); code != noErr) return code;
    const bool complete = ReadRows(reader, image);
    const JDIMENSION read = complete ? jpeg.image_height : jpeg.output_scanline;
    const JDIMENSION whole = std::min(read, reader.whole_rows);
    if (whole == 0) return codecBadDataErr;
    if (jpeg.out_color_space == JCS_CMYK) ConvertInks(image, jpeg.saw_Adobe_marker != FALSE);
    WhitenRows(image, static_cast<std::int32_t>(whole), image.height());
    image.has_alpha = false;
    image.is_grey = jpeg.jpeg_color_space == JCS_GRAYSCALE;
    return noErr;
}

} // namespace

ComponentResult DecodeJpeg(DataSource& source, std::uint32_t, PixelImage& image) {
    JpegReader reader;
    std::array<std::byte, 65'536> buffer;
    PrepareJpeg(reader, source, buffer);
    reader.pads = true;
    const ComponentResult code = Decode(reader, image);
    jpeg_destroy_decompress(&reader.decompress);
    return code;
}

} // namespace qt
