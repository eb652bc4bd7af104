#include "platform/quicktime/image_exporters/jpeg_transcode.h"
#include "platform/quicktime/image_exporters/jpeg_writer.h"
#include "platform/quicktime/image_exporters/opaque_rows.h"

#include <algorithm>
#include <cmath>

namespace qt {
namespace {

constexpr std::array<OSType, 2> kTypes = {Code("JPEG"), Code("jpeg")};
constexpr std::array<std::int32_t, 2> kDepths = {24, 40};
constexpr std::array<std::int32_t, 2> kMethods = {0, 1};
constexpr std::int32_t kGreyDepths = 32; ///< depths above are greys
constexpr std::int32_t kNormalQuality = 512;
constexpr int kLowest = 1; ///< of the library's scale, which ends at 100
constexpr int kHighest = 100;

struct Look {
    bool grey;
    bool progressive;
    int quality;
};

/// The library's quality for one of 0 to 1024.
int LibraryQuality(std::int32_t quality) {
    return std::clamp(static_cast<int>(std::lround(quality / 10.24)), kLowest, kHighest);
}

void SetUp(jpeg_compress_struct& jpeg, const PixelImage& image, const Look& look,
           const ExportSettings& settings) {
    jpeg.image_width = static_cast<JDIMENSION>(image.width());
    jpeg.image_height = static_cast<JDIMENSION>(image.height());
    jpeg.input_components = 4;
    jpeg.in_color_space = JCS_EXT_BGRX;
    jpeg_set_defaults(&jpeg);
    if (look.grey) jpeg_set_colorspace(&jpeg, JCS_GRAYSCALE);
    jpeg_set_quality(&jpeg, look.quality, TRUE);
    constexpr int kFullColour = 90; // from here on colours keep the resolution of brightness
    if (look.quality >= kFullColour) {
        jpeg.comp_info[0].h_samp_factor = 1;
        jpeg.comp_info[0].v_samp_factor = 1;
    }
    if (look.progressive) jpeg_simple_progression(&jpeg);
    SetJpegResolution(jpeg, settings);
}

/// False when the library gives up: there is no memory.
bool Write(JpegWriter& writer, const PixelImage& image, const Look& look, const ExportSettings& settings,
           std::uint32_t* scratch) {
    if (setjmp(writer.failed) != 0) return false;
    BeginJpeg(writer);
    jpeg_compress_struct& jpeg = writer.compress;
    SetUp(jpeg, image, look, settings);
    jpeg_start_compress(&jpeg, TRUE);
    while (jpeg.next_scanline < jpeg.image_height) {
        const std::uint32_t* row = OpaqueRow(image, static_cast<std::int32_t>(jpeg.next_scanline), scratch);
        auto* samples = reinterpret_cast<JSAMPROW>(const_cast<std::uint32_t*>(row));
        jpeg_write_scanlines(&jpeg, &samples, 1);
    }
    jpeg_finish_compress(&jpeg);
    return true;
}

/// Appends the encoded image to `out`.
ComponentResult EncodeAt(const PixelImage& image, const Look& look, const ExportSettings& settings,
                         EncodedBytes& out) {
    std::vector<std::uint32_t> scratch;
    if (image.has_alpha) scratch.resize(static_cast<std::size_t>(image.width()));
    JpegWriter writer;
    PrepareJpeg(writer, out);
    const bool written = Write(writer, image, look, settings, scratch.data());
    jpeg_destroy_compress(&writer.compress);
    return written ? noErr : memFullErr;
}

/// The best quality whose result is no larger than `limit`, or the lowest quality when none is.
ComponentResult EncodeWithin(std::uint32_t limit, const PixelImage& image, Look look,
                             const ExportSettings& settings, EncodedBytes& out) {
    const std::size_t before = out.size();
    EncodedBytes best;
    int too_large = kHighest + 1;
    int fits = 0;
    while (too_large - fits > 1) {
        look.quality = (too_large + fits) / 2;
        EncodedBytes tried;
        if (const auto code = EncodeAt(image, look, settings, tried); code != noErr) return code;
        const bool within = before + tried.size() <= limit;
        if (within || look.quality == kLowest) best.swap(tried);
        (within ? fits : too_large) = look.quality;
    }
    out.insert(out.end(), best.begin(), best.end());
    return noErr;
}

ComponentResult Encode(const PixelImage& image, const ExportSettings& settings, EncodedBytes& out) {
    constexpr std::int32_t kLargestSide = 65'500; // the library's own
    if (image.width() > kLargestSide || image.height() > kLargestSide) return codecSizeErr;
    const bool grey = settings.depth ? *settings.depth > kGreyDepths : image.is_grey;
    const Look look = {grey, settings.compression_method == 1,
                       LibraryQuality(settings.quality.value_or(kNormalQuality))};
    if (settings.target_size) return EncodeWithin(*settings.target_size, image, look, settings, out);
    return EncodeAt(image, look, settings, out);
}

} // namespace

const ImageExporter kJpegExporter = {kTypes, "jpg",    "JPEG", kDepths,      true,
                                     true,   kMethods, Encode, TranscodeJpeg};

} // namespace qt
