// Reading JPEG data through libjpeg: what the header reader, the decoder and the lossless copy share.
//
// The library reports errors by a long jump over its own frames and those between setjmp and the call, so
// nothing in between may own anything: the state of a read is one plain struct, and DataSource::Read, which
// the library's callbacks use, neither throws nor jumps.
#pragma once

#include "platform/quicktime/data_source.h"

#include <array>
#include <csetjmp>
#include <cstdio> // before jpeglib.h, which needs it and does not include it
#include <span>

#include <jpeglib.h>

namespace qt {

struct JpegReader {
    static constexpr std::size_t kExifBytes = 4096; ///< the first directory of an EXIF block lies well within
    static constexpr JDIMENSION kAllRows = 0xFFFF'FFFF;

    jpeg_decompress_struct decompress;
    jpeg_error_mgr errors;
    std::jmp_buf failed; ///< to be set before the library is called
    jpeg_source_mgr input;
    jpeg_progress_mgr progress;
    DataSource* source;
    std::span<std::byte> buffer;
    std::uint64_t offset;  ///< in the source, of the byte behind the buffer
    bool keeps_markers;    ///< in the decompressor's list, in place of the EXIF block's beginning here
    bool pads;             ///< data that breaks off ends as if it were complete; else that is an error
    bool padded;           ///< it did break off
    JDIMENSION whole_rows; ///< those in front of the place where the first scan broke off
    std::array<std::byte, kExifBytes> exif; ///< the first block's beginning, without its tag
    std::size_t exif_size;
};

/// Gives a reader its source and the buffer for its reads, which both outlive it.
void PrepareJpeg(JpegReader& reader, DataSource& source, std::span<std::byte> buffer);

/// Makes the decompressor and reads up to the first scan. Jumps to `failed` on errors. The caller destroys
/// the decompressor in every case.
void ReadJpegHeader(JpegReader& reader);

} // namespace qt
