#include "platform/quicktime/image_codecs/jpeg_reader.h"

#include "platform/quicktime/image_codecs/jpeg_segments.h"
#include "platform/quicktime/pixel_image.h"

#include <algorithm>

#include <jerror.h>

namespace qt {
namespace {

constexpr int kExifMarker = JPEG_APP0 + 1;

JpegReader& ReaderOf(j_common_ptr common) {
    return *static_cast<JpegReader*>(common->client_data);
}

JpegReader& ReaderOf(j_decompress_ptr decompress) {
    return *static_cast<JpegReader*>(decompress->client_data);
}

void OnError(j_common_ptr common) {
    std::longjmp(ReaderOf(common).failed, 1);
}

/// Notes where the entropy-coded data of the first scan ran out. Later scans only refine.
void OnMessage(j_common_ptr common, int) {
    JpegReader& reader = ReaderOf(common);
    const jpeg_decompress_struct& jpeg = reader.decompress;
    if (!reader.padded || common->err->msg_code != JWRN_HIT_MARKER || jpeg.input_scan_number > 1) return;
    const auto unit = static_cast<JDIMENSION>(jpeg.max_v_samp_factor * DCTSIZE);
    reader.whole_rows = std::min(reader.whole_rows, jpeg.input_iMCU_row * unit);
}

/// Each of many empty scans takes time for the whole image: no encoder writes so many.
void OnProgress(j_common_ptr common) {
    constexpr int kMostScans = 128;
    if (ReaderOf(common).decompress.input_scan_number > kMostScans) OnError(common);
}

void OnStart(j_decompress_ptr) {}

boolean OnFill(j_decompress_ptr decompress) {
    JpegReader& reader = ReaderOf(decompress);
    std::size_t count = reader.source->Read(reader.offset, reader.buffer);
    reader.offset += count;
    if (count == 0) {
        if (!reader.pads) ERREXIT(decompress, JERR_INPUT_EOF);
        reader.padded = true;
        reader.buffer[0] = std::byte{0xFF};
        reader.buffer[1] = std::byte{JPEG_EOI};
        count = 2;
    }
    reader.input.next_input_byte = reinterpret_cast<const JOCTET*>(reader.buffer.data());
    reader.input.bytes_in_buffer = count;
    return TRUE;
}

void OnSkip(j_decompress_ptr decompress, long count) {
    if (count <= 0) return;
    JpegReader& reader = ReaderOf(decompress);
    const auto skipped = static_cast<std::size_t>(count);
    const std::size_t in_buffer = std::min(skipped, reader.input.bytes_in_buffer);
    reader.input.next_input_byte += in_buffer;
    reader.input.bytes_in_buffer -= in_buffer;
    reader.offset += skipped - in_buffer;
}

unsigned NextByte(j_decompress_ptr decompress) {
    jpeg_source_mgr& input = *decompress->src;
    if (input.bytes_in_buffer == 0) OnFill(decompress);
    --input.bytes_in_buffer;
    return *input.next_input_byte++;
}

/// Keeps the beginning of the first EXIF block; other blocks under the same marker are skipped.
boolean OnExif(j_decompress_ptr decompress) {
    JpegReader& reader = ReaderOf(decompress);
    unsigned remaining = NextByte(decompress) << 8;
    remaining |= NextByte(decompress);
    if (remaining < 2) ERREXIT(decompress, JERR_BAD_LENGTH);
    remaining -= 2;
    bool is_exif = reader.exif_size == 0 && remaining > kExifTag.size();
    for (std::size_t i = 0; is_exif && i < kExifTag.size(); ++i, --remaining) {
        is_exif = NextByte(decompress) == static_cast<unsigned char>(kExifTag[i]);
    }
    for (; is_exif && remaining > 0 && reader.exif_size < reader.exif.size(); --remaining) {
        reader.exif[reader.exif_size++] = static_cast<std::byte>(NextByte(decompress));
    }
    OnSkip(decompress, static_cast<long>(remaining));
    return TRUE;
}

void KeepMarkers(jpeg_decompress_struct& decompress) {
    constexpr unsigned kWhole = 0xFFFF;
    constexpr int kApplications = 16;
    jpeg_save_markers(&decompress, JPEG_COM, kWhole);
    for (int i = 0; i < kApplications; ++i) jpeg_save_markers(&decompress, JPEG_APP0 + i, kWhole);
}

} // namespace

void PrepareJpeg(JpegReader& reader, DataSource& source, std::span<std::byte> buffer) {
    reader.decompress.mem = nullptr; // nothing to destroy while the library has not made it
    reader.source = &source;
    reader.buffer = buffer;
    reader.offset = 0;
    reader.keeps_markers = false;
    reader.pads = false;
    reader.padded = false;
    reader.whole_rows = JpegReader::kAllRows;
    reader.exif_size = 0;
    reader.input.bytes_in_buffer = 0;
}

void ReadJpegHeader(JpegReader& reader) {
    reader.decompress.err = jpeg_std_error(&reader.errors);
    reader.errors.error_exit = OnError;
    reader.errors.emit_message = OnMessage;
    reader.decompress.client_data = &reader;
    jpeg_create_decompress(&reader.decompress);
    reader.decompress.mem->max_memory_to_use = kMaximumPixelBytes;
    reader.progress.progress_monitor = OnProgress;
    reader.decompress.progress = &reader.progress;
    reader.input.init_source = OnStart;
    reader.input.fill_input_buffer = OnFill;
    reader.input.skip_input_data = OnSkip;
    reader.input.resync_to_restart = jpeg_resync_to_restart;
    reader.input.term_source = OnStart;
    reader.decompress.src = &reader.input;
    if (reader.keeps_markers) {
        KeepMarkers(reader.decompress);
    } else {
        jpeg_set_marker_processor(&reader.decompress, kExifMarker, OnExif);
    }
    jpeg_read_header(&reader.decompress, TRUE);
}

} // namespace qt
