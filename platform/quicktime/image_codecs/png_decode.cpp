// Decoding through libpng, which reports errors by a long jump: nothing between setjmp and its calls may own
// anything, so that the state of a read is one plain struct.
#include "platform/quicktime/image_codecs/png_decode.h"

#include "platform/quicktime/image_codecs/png_rgb.h"
#include "platform/quicktime/image_codecs/raster.h"
#include "platform/quicktime/modules/png_library.h"

#include <array>
#include <csetjmp>

namespace qt {
namespace {

struct Reader {
    png_structp png;
    png_infop info;
    std::jmp_buf failed;
    DataSource* source;
    std::uint64_t offset;
    png_uint_32 width;
    png_uint_32 height;
    png_uint_32 next_row; ///< of the latest pass
    int passes;
    int pass;
    bool has_alpha;
    bool is_grey;
    bool is_plain_rgb; ///< 8 bits a sample, neither transparent nor interlaced
};

[[noreturn]] void OnError(png_structp png, png_const_charp) {
    std::longjmp(static_cast<Reader*>(g_png->get_error_ptr(png))->failed, 1);
}

void OnWarning(png_structp, png_const_charp) {}

void OnRead(png_structp png, png_bytep bytes, std::size_t size) {
    auto& reader = *static_cast<Reader*>(g_png->get_io_ptr(png));
    if (reader.source->Read(reader.offset, {reinterpret_cast<std::byte*>(bytes), size}) != size)
        g_png->error(png, "the data breaks off");
    reader.offset += size;
}

/// Chunks that change nothing here, and could cost time or memory.
void IgnoreOtherChunks(png_structp png) {
    constexpr std::array<png_byte, 60> kNames = {
        'b', 'K', 'G', 'D', 0, 'c', 'H', 'R', 'M', 0, 'e', 'X', 'I', 'f', 0, 'g', 'A', 'M', 'A', 0,
        'h', 'I', 'S', 'T', 0, 'i', 'C', 'C', 'P', 0, 'i', 'T', 'X', 't', 0, 's', 'B', 'I', 'T', 0,
        's', 'P', 'L', 'T', 0, 's', 'R', 'G', 'B', 0, 't', 'E', 'X', 't', 0, 'z', 'T', 'X', 't', 0};
    g_png->set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, kNames.data(), kNames.size() / 5);
}

/// Reads up to the pixel data and asks for pixels as PixelImage holds them. False when the library refuses.
bool ReadHeader(Reader& reader) {
    if (setjmp(reader.failed) != 0) return false;
    png_structp png = reader.png;
    g_png->set_read_fn(png, &reader, OnRead);
    g_png->set_user_limits(png, kMaximumDimension, kMaximumDimension);
    IgnoreOtherChunks(png);
    g_png->read_info(png, reader.info);
    reader.width = g_png->get_image_width(png, reader.info);
    reader.height = g_png->get_image_height(png, reader.info);
    const png_byte type = g_png->get_color_type(png, reader.info);
    const bool transparent = g_png->get_valid(png, reader.info, PNG_INFO_tRNS) != 0;
    reader.has_alpha = (type & PNG_COLOR_MASK_ALPHA) != 0 || transparent;
    reader.is_grey = (type & PNG_COLOR_MASK_COLOR) == 0;
    reader.is_plain_rgb = type == PNG_COLOR_TYPE_RGB && !transparent &&
                          g_png->get_bit_depth(png, reader.info) == 8 &&
                          g_png->get_interlace_type(png, reader.info) == PNG_INTERLACE_NONE;
    g_png->set_expand(png);
    g_png->set_scale_16(png);
    if (reader.is_grey) g_png->set_gray_to_rgb(png);
    g_png->set_bgr(png);
    g_png->set_filler(png, 0xFF, PNG_FILLER_AFTER);
    reader.passes = g_png->set_interlace_handling(png);
    g_png->read_update_info(png, reader.info);
    return g_png->get_rowbytes(png, reader.info) == std::size_t{reader.width} * 4;
}

/// False when the library gives up; pass and next_row tell how far it came.
bool ReadRows(Reader& reader, PixelImage& image) {
    if (setjmp(reader.failed) != 0) return false;
    for (reader.pass = 0; reader.pass < reader.passes; ++reader.pass) {
        for (reader.next_row = 0; reader.next_row < reader.height; ++reader.next_row) {
            const auto y = static_cast<std::int32_t>(reader.next_row);
            g_png->read_row(reader.png, nullptr, reinterpret_cast<png_bytep>(image.Row(y)));
        }
    }
    return true;
}

ComponentResult Decode(Reader& reader, PixelImage& image) {
    if (!ReadHeader(reader)) return codecBadDataErr;
    ImageDescription description;
    if (const auto code = SetDimensions(description, reader.width, reader.height); code != noErr) return code;
    constexpr std::uint32_t kMostPixelsPerByte = 1032 * 8; // the most that Deflate packs, at a bit a pixel
    if (const auto code = AllocateFor(description, *reader.source, kMostPixelsPerByte, image); code != noErr)
        return code;
    image.has_alpha = reader.has_alpha;
    image.is_grey = reader.is_grey;
    // The library has read on to the contents of the first data chunk.
    if (reader.is_plain_rgb && DecodeWholeRgb(*reader.source, reader.offset - 8, image)) return noErr;
    const bool interlaced = reader.passes > 1;
    if (interlaced) WhitenRows(image, 0, image.height()); // passes leave gaps when they break off
    if (!ReadRows(reader, image)) {
        if (reader.pass == 0 && reader.next_row == 0) return codecBadDataErr;
        if (!interlaced) WhitenRows(image, static_cast<std::int32_t>(reader.next_row), image.height());
    }
    return noErr;
}

} // namespace

ComponentResult DecodePng(DataSource& source, std::uint32_t, PixelImage& image) {
    if (!g_png.Load()) return codecUnimpErr;
    Reader reader{};
    reader.source = &source;
    reader.png = g_png->create_read_struct(PNG_LIBPNG_VER_STRING, &reader, OnError, OnWarning);
    if (reader.png == nullptr) return memFullErr;
    reader.info = g_png->create_info_struct(reader.png);
    const ComponentResult code = reader.info != nullptr ? Decode(reader, image) : ComponentResult{memFullErr};
    g_png->destroy_read_struct(&reader.png, &reader.info, nullptr);
    return code;
}

} // namespace qt
