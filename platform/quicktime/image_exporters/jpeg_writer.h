// Writing JPEG data through libjpeg. As in reading, errors are long jumps: the state of a write is one plain
// struct, and nothing between setjmp and the library's calls may own anything.
#pragma once

#include "platform/quicktime/image_exporters/exporter.h"

#include <array>
#include <csetjmp>
#include <cstdio> // before jpeglib.h, which needs it and does not include it

#include <jpeglib.h>

namespace qt {

struct JpegWriter {
    jpeg_compress_struct compress;
    jpeg_error_mgr errors;
    std::jmp_buf failed; ///< to be set before the library is called
    jpeg_destination_mgr output;
    EncodedBytes* out;
    std::array<JOCTET, 65'536> buffer;
};

/// Gives a writer the end of what `out` holds as its place. The caller destroys the compressor in every case.
void PrepareJpeg(JpegWriter& writer, EncodedBytes& out);

/// Makes the compressor. Jumps to `failed` on errors, for want of memory as well.
void BeginJpeg(JpegWriter& writer);

/// Dots per inch, of 16.16 fixed point, as a JFIF header counts them.
UINT16 JpegDots(std::uint32_t resolution);

/// States a resolution in dots per inch, when there is one. For after the compressor's defaults are set.
void SetJpegResolution(jpeg_compress_struct& compress, const ExportSettings& settings);

} // namespace qt
