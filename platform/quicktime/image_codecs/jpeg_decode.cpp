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

/// A part of the reduced image: its pixels from the left, and its rows up to the last one that is wanted.
struct Window {
    JDIMENSION left = 0;
    JDIMENSION width = 0;
    JDIMENSION top = 0;
    JDIMENSION bottom = 0;
};

/// Begins to decode what holds the window, which becomes what will be decoded. False when the library gives
/// up.
bool Start(JpegReader& reader, JDIMENSION reduction, Window& window) {
    if (setjmp(reader.failed) != 0) return false;
    jpeg_decompress_struct& jpeg = reader.decompress;
    jpeg.scale_num = 1;
    jpeg.scale_denom = reduction;
    jpeg_start_decompress(&jpeg);
    window.bottom = std::min(window.bottom, jpeg.output_height);
    window.width = std::min(window.width, jpeg.output_width - window.left);
    if (window.width < jpeg.output_width) jpeg_crop_scanline(&jpeg, &window.left, &window.width);
    if (window.top > 0) jpeg_skip_scanlines(&jpeg, window.top);
    return true;
}

/// Reads the window's rows. A scan that breaks off does not end it; false when the library gives up.
bool ReadRows(JpegReader& reader, const Window& window, PixelImage& image) {
    if (setjmp(reader.failed) != 0) return false;
    jpeg_decompress_struct& jpeg = reader.decompress;
    while (jpeg.output_scanline < window.bottom) {
        std::array<JSAMPROW, kBatch> rows;
        const JDIMENSION first = jpeg.output_scanline - window.top;
        const JDIMENSION count = std::min(kBatch, window.bottom - jpeg.output_scanline);
        for (JDIMENSION i = 0; i < count; ++i) {
            rows[i] = reinterpret_cast<JSAMPROW>(image.Row(static_cast<std::int32_t>(first + i)));
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

ComponentResult Decode(JpegReader& reader, JDIMENSION reduction, Window& window, PixelImage& image) {
    if (!Begin(reader)) return codecBadDataErr;
    const jpeg_decompress_struct& jpeg = reader.decompress;
    ImageDescription description;
    if (const auto code = SetDimensions(description, jpeg.image_width, jpeg.image_height); code != noErr)
        return code;
    constexpr std::uint32_t kMostPixelsPerByte = 512; // a bit for each block of 64
    const std::uint64_t size = reader.source->GetSize();
    if (!DataHolds(size, jpeg.image_width, jpeg.image_height, kMostPixelsPerByte)) return codecBadDataErr;
    if (!Start(reader, reduction, window)) return codecBadDataErr;
    const auto width = static_cast<std::int32_t>(window.width);
    const auto code = image.Allocate(width, static_cast<std::int32_t>(window.bottom - window.top));
    if (code != noErr) return code;
    const bool complete = ReadRows(reader, window, image);
    const JDIMENSION read = complete ? window.bottom : jpeg.output_scanline;
    const JDIMENSION whole = std::min(read, reader.whole_rows / reduction);
    if (whole == 0) return codecBadDataErr;
    if (jpeg.out_color_space == JCS_CMYK) ConvertInks(image, jpeg.saw_Adobe_marker != FALSE);
    WhitenRows(image, static_cast<std::int32_t>(std::max(whole, window.top) - window.top), image.height());
    image.has_alpha = false;
    image.is_grey = jpeg.jpeg_color_space == JCS_GRAYSCALE;
    return noErr;
}

ComponentResult Decode(DataSource& source, JDIMENSION reduction, Window& window, PixelImage& image) {
    JpegReader reader;
    std::array<std::byte, 65'536> buffer;
    PrepareJpeg(reader, source, buffer);
    reader.pads = true;
    const ComponentResult code = Decode(reader, reduction, window, image);
    jpeg_destroy_decompress(&reader.decompress);
    return code;
}

} // namespace

ComponentResult DecodeJpeg(DataSource& source, std::uint32_t, PixelImage& image) {
    Window all = {0, kMaximumDimension, 0, kMaximumDimension};
    return Decode(source, 1, all, image);
}

ComponentResult DecodeJpegPart(DataSource& source, std::uint32_t, const Rect& part, std::int32_t reduction,
                               DecodedPart& out) {
    constexpr std::int32_t kMargin = 16; // pixels: at its edges a part's colours are coarser
    const auto low = [&](std::int32_t edge) {
        return static_cast<JDIMENSION>(std::max(edge - kMargin, 0) / reduction);
    };
    const auto high = [&](std::int32_t edge) {
        return static_cast<JDIMENSION>((edge + kMargin + reduction - 1) / reduction);
    };
    Window window = {low(part.left), high(part.right) - low(part.left), low(part.top), high(part.bottom)};
    const auto code = Decode(source, static_cast<JDIMENSION>(reduction), window, out.image);
    out.left = static_cast<std::int32_t>(window.left) * reduction;
    out.top = static_cast<std::int32_t>(window.top) * reduction;
    out.reduction = reduction;
    return code;
}

} // namespace qt
