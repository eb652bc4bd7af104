// PNG. The format is written here, row filters included, and the compression left to libdeflate, which takes
// a third of zlib's time for a smaller result.
#include "platform/quicktime/image_exporters/png_rows.h"

#include "platform/quicktime/image_exporters/pass_on.h"

#include <libdeflate.h>

#include <array>
#include <cmath>
#include <memory>
#include <new>

namespace qt {
namespace {

constexpr std::array<OSType, 3> kTypes = {Code("PNGf"), Code("PNG "), Code("png ")};
constexpr std::array<std::int32_t, 10> kDepths = {24, 32, 8, 4, 2, 1, 40, 36, 34, 33};
constexpr std::array<std::int32_t, 2> kMethods = {0, 1};
constexpr std::int32_t kGreyDepths = 32; ///< depths above are greys

void Put32(std::uint32_t value, EncodedBytes& out) {
    for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<std::byte>(value >> shift));
}

/// Length, type, data, checksum.
void PutChunk(const char (&type)[5], std::span<const std::byte> data, EncodedBytes& out) {
    Put32(static_cast<std::uint32_t>(data.size()), out);
    const std::size_t begin = out.size();
    Put32(Code(type), out);
    out.insert(out.end(), data.begin(), data.end());
    Put32(libdeflate_crc32(0, out.data() + begin, out.size() - begin), out);
}

void PutHeader(const PixelImage& image, unsigned bits, unsigned colour_type, bool interlaced,
               EncodedBytes& out) {
    EncodedBytes header;
    Put32(static_cast<std::uint32_t>(image.width()), header);
    Put32(static_cast<std::uint32_t>(image.height()), header);
    for (const unsigned value : {bits, colour_type, 0U, 0U, interlaced ? 1U : 0U}) {
        header.push_back(static_cast<std::byte>(value));
    }
    PutChunk("IHDR", header, out);
}

void PutResolution(const ExportSettings& settings, EncodedBytes& out) {
    if (!settings.horizontal_resolution) return;
    const auto per_metre = [](Fixed dots_per_inch) {
        constexpr double kMetresPerInch = 0.0254;
        return static_cast<std::uint32_t>(
            std::lround(std::max(dots_per_inch, 0) / 65'536.0 / kMetresPerInch));
    };
    EncodedBytes data;
    Put32(per_metre(*settings.horizontal_resolution), data);
    Put32(per_metre(settings.vertical_resolution.value_or(*settings.horizontal_resolution)), data);
    data.push_back(std::byte{1}); // the unit is the metre
    PutChunk("pHYs", data, out);
}

void PutPalette(const std::vector<std::uint32_t>& palette, EncodedBytes& out) {
    EncodedBytes colours;
    EncodedBytes alphas; // up to the last that is not opaque
    for (std::size_t i = 0; i < palette.size(); ++i) {
        for (const std::uint32_t value : {Red(palette[i]), Green(palette[i]), Blue(palette[i])}) {
            colours.push_back(static_cast<std::byte>(value));
        }
        if (Alpha(palette[i]) == 255) continue;
        alphas.resize(i, std::byte{255});
        alphas.push_back(static_cast<std::byte>(Alpha(palette[i])));
    }
    PutChunk("PLTE", colours, out);
    if (!alphas.empty()) PutChunk("tRNS", alphas, out);
}

struct CompressorFreer {
    void operator()(libdeflate_compressor* compressor) const { libdeflate_free_compressor(compressor); }
};

/// Rows of large images are compressed at the level that costs no more time than their decoding.
int LevelFor(std::size_t size) {
    constexpr std::size_t kLarge = std::size_t{4} << 20;
    return size > kLarge ? 1 : 6;
}

void PutRows(const PngPixels& pixels, bool interlaced, EncodedBytes& out) {
    constexpr std::size_t kLongestChunk = 0x7FFF'FFFF;
    std::vector<std::uint8_t> rows = PngRows(pixels, interlaced);
    const std::unique_ptr<libdeflate_compressor, CompressorFreer> compressor(
        libdeflate_alloc_compressor(LevelFor(rows.size())));
    if (compressor == nullptr) throw std::bad_alloc();
    const std::size_t bound = libdeflate_zlib_compress_bound(compressor.get(), rows.size());
    const auto packed = std::make_unique_for_overwrite<std::byte[]>(bound);
    const std::size_t size =
        libdeflate_zlib_compress(compressor.get(), rows.data(), rows.size(), packed.get(), bound);
    rows = {};
    out.reserve(out.size() + size + 64);
    std::span<const std::byte> left(packed.get(), size);
    while (!left.empty()) {
        const auto part = left.first(std::min(left.size(), kLongestChunk));
        PutChunk("IDAT", part, out);
        left = left.subspan(part.size());
    }
}

enum ColourType : unsigned { kGrey = 0, kRgb = 2, kPalette = 3, kRgba = 6 };

/// How a depth is stored; 0 stands for the image's own.
struct Form {
    std::int32_t quantised; ///< depth for Quantise, 0 for none
    unsigned bits;          ///< a sample
    ColourType colour_type;
};

Form FormOf(const PixelImage& image, std::int32_t depth) {
    switch (depth) {
    case 1:
    case 2:
    case 4:
    case 8: return {depth, static_cast<unsigned>(depth), kPalette};
    case 33:
    case 34:
    case 36:
    case 40: return {depth, static_cast<unsigned>(depth - kGreyDepths), kGrey};
    case 32: return {0, 8, kRgba};
    case 0:
        if (image.has_alpha) return {0, 8, kRgba};
        if (image.is_grey) return {0, 8, kGrey};
        return {0, 8, kRgb};
    default: return {0, 8, kRgb};
    }
}

ComponentResult Encode(const PixelImage& image, const ExportSettings& settings, EncodedBytes& out) {
    constexpr std::array<unsigned char, 8> kSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    const bool interlaced = settings.compression_method == 1;
    const Form form = FormOf(image, settings.depth.value_or(0));
    IndexedImage indexed{};
    if (form.quantised != 0) {
        if (const auto code = Quantise(image, form.quantised, indexed); code != noErr) return code;
    }
    for (const unsigned char byte : kSignature) out.push_back(std::byte{byte});
    PutHeader(image, form.bits, form.colour_type, interlaced, out);
    PutResolution(settings, out);
    if (form.colour_type == kPalette) PutPalette(indexed.palette, out);
    const unsigned samples = form.colour_type == kRgba ? 4 : form.colour_type == kRgb ? 3 : 1;
    PutRows({&image, form.quantised != 0 ? &indexed : nullptr, form.bits * samples}, interlaced, out);
    PutChunk("IEND", {}, out);
    return noErr;
}

} // namespace

const ImageExporter kPngExporter = {
    kTypes, "png", "PNG", kDepths, false, false, kMethods, Encode, PassOnUnchanged<kPngCodec>};

} // namespace qt
