// JPEG, through libjpeg.
#include "platform/quicktime/image_codecs/codec.h"
#include "platform/quicktime/image_codecs/exif_resolution.h"
#include "platform/quicktime/image_codecs/jpeg_decode.h"
#include "platform/quicktime/image_codecs/jpeg_metadata.h"
#include "platform/quicktime/image_codecs/jpeg_reader.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace qt {
namespace {

constexpr std::array<OSType, 3> kTypes = {Code("JPEG"), Code("jpeg"), Code("JFIF")};
/// False when the library refuses the data.
bool ReadHeader(JpegReader& reader) {
    if (setjmp(reader.failed) != 0) return false;
    ReadJpegHeader(reader);
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
    return std::clamp(static_cast<std::int32_t>(std::lround(quality * 10.24)), 0, 1023);
}

void SetResolution(const JpegReader& reader, ImageDescription& description) {
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

ComponentResult TakeFacts(JpegReader& reader, ImageFacts& facts) {
    const jpeg_decompress_struct& jpeg = reader.decompress;
    std::array<std::byte, 1> first;
    const bool scan_begins =
        reader.input.bytes_in_buffer > 0 || reader.source->Read(reader.offset, first) == 1;
    if (!scan_begins) return codecBadDataErr;
    ImageDescription& description = facts.description;
    description.cType = Code("jpeg");
    description.name = Name("Photo - JPEG");
    description.spatialQuality = QualityOf(jpeg);
    description.depth = static_cast<std::int16_t>(jpeg.num_components == 1   ? 40
                                                  : jpeg.num_components == 4 ? 32
                                                                             : 24);
    SetResolution(reader, description);
    facts.data_size = reader.source->GetSize();
    return SetDimensions(description, jpeg.image_width, jpeg.image_height);
}

bool Sniff(std::span<const std::byte> head) {
    return head.size() >= 3 && head[0] == std::byte{0xFF} && head[1] == std::byte{0xD8} &&
           head[2] == std::byte{0xFF};
}

ComponentResult ReadFacts(DataSource& source, ImageFacts& facts) {
    JpegReader reader;
    std::array<std::byte, 1024> buffer;
    PrepareJpeg(reader, source, buffer);
    const ComponentResult code = ReadHeader(reader) ? TakeFacts(reader, facts) : codecBadDataErr;
    jpeg_destroy_decompress(&reader.decompress);
    return code;
}

} // namespace

const ImageCodec kJpegCodec = {kTypes, Sniff, ReadFacts, true, DecodeJpeg, ReadJpegMetadata, DecodeJpegPart};

} // namespace qt
