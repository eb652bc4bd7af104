// JPEG, through libjpeg.
//
// The library reports errors by a long jump over its own frames and those between setjmp and the call, so
// nothing in between may own anything: the state of a read is one plain struct, and DataSource::Read, which
// the library's callbacks use, neither throws nor jumps.
#include "platform/quicktime/image_codecs/codec.h"
#include "platform/quicktime/image_codecs/exif_resolution.h"

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio> // before jpeglib.h, which needs it and does not include it

#include <jerror.h>
#include <jpeglib.h>

namespace qt {
namespace {

constexpr std::array<OSType, 3> kTypes = {Code("JPEG"), Code("jpeg"), Code("JFIF")};
constexpr int kExifMarker = JPEG_APP0 + 1;
constexpr std::size_t kExifBytes = 4096; ///< the first directory of an EXIF block lies well within
constexpr std::array<char, 6> kExifTag = {'E', 'x', 'i', 'f', '\0', '\0'};

struct HeaderReader {
    jpeg_decompress_struct decompress;
    jpeg_error_mgr errors;
    std::jmp_buf failed;
    jpeg_source_mgr input;
    DataSource* source;
    std::uint64_t offset; ///< in the source, of the byte behind the buffer
    std::array<std::byte, 1024> buffer;
    std::array<std::byte, kExifBytes> exif; ///< the block's beginning, without its tag
    std::size_t exif_size;
};

HeaderReader& ReaderOf(j_common_ptr common) {
    return *static_cast<HeaderReader*>(common->client_data);
}

HeaderReader& ReaderOf(j_decompress_ptr decompress) {
    return *static_cast<HeaderReader*>(decompress->client_data);
}

void OnError(j_common_ptr common) {
    std::longjmp(ReaderOf(common).failed, 1);
}

void OnMessage(j_common_ptr, int) {}

void OnStart(j_decompress_ptr) {}

boolean OnFill(j_decompress_ptr decompress) {
    HeaderReader& reader = ReaderOf(decompress);
    const std::size_t count = reader.source->Read(reader.offset, reader.buffer);
    if (count == 0) ERREXIT(decompress, JERR_INPUT_EOF);
    reader.offset += count;
    reader.input.next_input_byte = reinterpret_cast<const JOCTET*>(reader.buffer.data());
    reader.input.bytes_in_buffer = count;
    return TRUE;
}

void OnSkip(j_decompress_ptr decompress, long count) {
    if (count <= 0) return;
    HeaderReader& reader = ReaderOf(decompress);
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
    HeaderReader& reader = ReaderOf(decompress);
    unsigned remaining = NextByte(decompress) << 8;
    remaining |= NextByte(decompress);
    if (remaining < 2) ERREXIT(decompress, JERR_BAD_LENGTH);
    remaining -= 2;
    bool is_exif = reader.exif_size == 0 && remaining > kExifTag.size();
    for (std::size_t i = 0; is_exif && i < kExifTag.size(); ++i, --remaining) {
        is_exif = NextByte(decompress) == static_cast<unsigned char>(kExifTag[i]);
    }
    for (; is_exif && remaining > 0 && reader.exif_size < kExifBytes; --remaining) {
        reader.exif[reader.exif_size++] = static_cast<std::byte>(NextByte(decompress));
    }
    OnSkip(decompress, static_cast<long>(remaining));
    return TRUE;
}

/// False when the library refuses the data. The caller destroys the reader's decompressor either way.
bool ReadHeader(HeaderReader& reader) {
    if (setjmp(reader.failed) != 0) return false;
    reader.decompress.err = jpeg_std_error(&reader.errors);
    reader.errors.error_exit = OnError;
    reader.errors.emit_message = OnMessage;
    reader.decompress.client_data = &reader;
    jpeg_create_decompress(&reader.decompress);
    reader.input.init_source = OnStart;
    reader.input.fill_input_buffer = OnFill;
    reader.input.skip_input_data = OnSkip;
    reader.input.resync_to_restart = jpeg_resync_to_restart;
    reader.input.term_source = OnStart;
    reader.decompress.src = &reader.input;
    jpeg_set_marker_processor(&reader.decompress, kExifMarker, OnExif);
    jpeg_read_header(&reader.decompress, TRUE);
    return true;
}

/// The standard's luminance table, row by row: what quality 50 uses.
constexpr std::array<UINT16, DCTSIZE2> kStandardTable = {
    16, 11, 10, 16, 24,  40,  51,  61,  12, 12, 14, 19, 26,  58,  60,  55, //
    14, 13, 16, 24, 40,  57,  69,  56,  14, 17, 22, 29, 51,  87,  80,  62, //
    18, 22, 37, 56, 68,  109, 103, 77,  24, 35, 55, 64, 81,  104, 113, 92, //
    49, 64, 78, 87, 103, 121, 120, 101, 72, 92, 95, 98, 112, 100, 103, 99};

/// The encoder's quality setting (1 to 100), as its luminance table shows it, on the scale up to 1023:
/// 50 is 512, normal. 512 also when there is no table to tell.
std::int32_t QualityOf(const jpeg_decompress_struct& decompress) {
    const JQUANT_TBL* table = decompress.quant_tbl_ptrs[0];
    if (table == nullptr) return 512;
    double sum = 0.0;
    double standard_sum = 0.0;
    for (std::size_t i = 0; i < kStandardTable.size(); ++i) {
        if (table->quantval[i] >= 255) continue; // held at the end of a byte, it tells nothing
        sum += table->quantval[i];
        standard_sum += kStandardTable[i];
    }
    if (standard_sum == 0.0) return 0;
    const double percent = std::max(sum / standard_sum * 100.0, 1.0);
    const double quality = percent <= 100.0 ? 100.0 - percent / 2.0 : 5000.0 / percent;
    return std::clamp(static_cast<std::int32_t>(quality * 10.24 + 0.5), 0, 1023);
}

void SetResolution(const HeaderReader& reader, ImageDescription& description) {
    const jpeg_decompress_struct& jpeg = reader.decompress;
    constexpr double kCentimetresPerInch = 2.54;
    Resolution resolution{};
    if (jpeg.saw_JFIF_marker != FALSE && jpeg.density_unit != 0) {
        const double scale = jpeg.density_unit == 2 ? kCentimetresPerInch : 1.0;
        resolution = {jpeg.X_density * scale, jpeg.Y_density * scale};
    } else {
        resolution = ExifResolution({reader.exif.data(), reader.exif_size});
    }
    description.hRes = FixedResolution(resolution.horizontal);
    description.vRes = FixedResolution(resolution.vertical);
}

ComponentResult TakeFacts(HeaderReader& reader, ImageFacts& facts) {
    const jpeg_decompress_struct& jpeg = reader.decompress;
    std::array<std::byte, 1> first;
    const bool scan_begins =
        reader.input.bytes_in_buffer > 0 || reader.source->Read(reader.offset, first) == 1;
    if (!scan_begins) return codecBadDataErr;
    ImageDescription& description = facts.description;
    description.cType = Code("jpeg");
    description.name = Name("Photo - JPEG");
    description.spatialQuality = QualityOf(jpeg);
    description.depth = jpeg.num_components == 1 ? 40 : jpeg.num_components == 4 ? 32 : 24;
    SetResolution(reader, description);
    facts.data_size = reader.source->GetSize();
    return SetDimensions(description, jpeg.image_width, jpeg.image_height);
}

bool Sniff(std::span<const std::byte> head) {
    return head.size() >= 3 && head[0] == std::byte{0xFF} && head[1] == std::byte{0xD8} &&
           head[2] == std::byte{0xFF};
}

ComponentResult ReadFacts(DataSource& source, ImageFacts& facts) {
    HeaderReader reader;
    reader.decompress.mem = nullptr; // nothing to destroy while the library has not made it
    reader.source = &source;
    reader.offset = 0;
    reader.exif_size = 0;
    reader.input.bytes_in_buffer = 0;
    const ComponentResult code = ReadHeader(reader) ? TakeFacts(reader, facts) : codecBadDataErr;
    jpeg_destroy_decompress(&reader.decompress);
    return code;
}

} // namespace

const ImageCodec kJpegCodec = {kTypes, Sniff, ReadFacts, true};

} // namespace qt
