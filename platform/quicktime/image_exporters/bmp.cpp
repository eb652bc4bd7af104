// BMP: uncompressed rows from the bottom up. With alpha the header is the one that has room for the masks of
// the channels, as the shorter one leaves the meaning of the fourth byte open.
#include "platform/quicktime/image_exporters/index_rows.h"
#include "platform/quicktime/image_exporters/opaque_rows.h"
#include "platform/quicktime/image_exporters/pass_on.h"
#include "platform/quicktime/image_exporters/raw_rows.h"

#include <array>
#include <cmath>

namespace qt {
namespace {

constexpr std::array<OSType, 3> kTypes = {Code("BMPf"), Code("WRLE"), Code("bmp ")};
constexpr std::array<std::int32_t, 8> kDepths = {24, 32, 8, 4, 1, 40, 36, 33};
constexpr std::uint32_t kFileHeader = 14;
constexpr std::uint32_t kInfoHeader = 40;
constexpr std::uint32_t kMasksHeader = 108;

/// How a depth is stored.
struct Form {
    std::int32_t quantised; ///< depth for Quantise, 0 for none
    unsigned bits;
};

Form FormOf(const PixelImage& image, std::int32_t depth) {
    switch (depth) {
    case 1:
    case 33: return {depth, 1};
    case 2:
    case 4:
    case 34:
    case 36: return {depth, 4};
    case 8:
    case 40: return {depth, 8};
    case 16:
    case 24: return {0, 24};
    case 32: return {0, 32};
    default: return image.has_alpha ? Form{0, 32} : image.is_grey ? Form{40, 8} : Form{0, 24};
    }
}

std::uint32_t DotsPerMetre(const std::optional<Fixed>& dots_per_inch) {
    constexpr double kMetresPerInch = 0.0254;
    return static_cast<std::uint32_t>(std::lround(ResolutionIn(dots_per_inch, kMetresPerInch)));
}

void AppendHeaders(const PixelImage& image, const ExportSettings& settings, unsigned bits,
                   const std::vector<std::uint32_t>& palette, std::size_t pixel_bytes, EncodedBytes& out) {
    const std::uint32_t header = bits == 32 ? kMasksHeader : kInfoHeader;
    const auto colours = static_cast<std::uint32_t>(palette.size());
    const std::uint32_t pixels_at = kFileHeader + header + colours * 4;
    const auto size = static_cast<std::uint32_t>(pixel_bytes);
    constexpr std::uint32_t kPlain = 0;
    constexpr std::uint32_t kBitFields = 3;
    out.push_back(std::byte{'B'});
    out.push_back(std::byte{'M'});
    AppendLittle32(out, pixels_at + size);
    AppendLittle32(out, 0);
    AppendLittle32(out, pixels_at);
    AppendLittle32(out, header);
    AppendLittle32(out, static_cast<std::uint32_t>(image.width()));
    AppendLittle32(out, static_cast<std::uint32_t>(image.height()));
    AppendLittle16(out, 1); // planes
    AppendLittle16(out, bits);
    AppendLittle32(out, bits == 32 ? kBitFields : kPlain);
    AppendLittle32(out, size);
    AppendLittle32(out, DotsPerMetre(settings.horizontal_resolution));
    AppendLittle32(out, DotsPerMetre(settings.vertical_resolution));
    AppendLittle32(out, colours);
    AppendLittle32(out, 0); // all colours matter
    if (bits == 32) {
        constexpr std::uint32_t kStandardColours = 0x73524742; // 'sRGB', for which no primaries are given
        for (const std::uint32_t mask : {0xFF'0000U, 0xFF00U, 0xFFU, 0xFF00'0000U}) AppendLittle32(out, mask);
        AppendLittle32(out, kStandardColours);
        out.resize(out.size() + kMasksHeader - kInfoHeader - 20);
    }
    for (const std::uint32_t colour : palette) AppendLittle32(out, colour & 0xFF'FFFF);
}

ComponentResult Encode(const PixelImage& image, const ExportSettings& settings, EncodedBytes& out) {
    const Form form = FormOf(image, settings.depth.value_or(0));
    IndexedImage indexed{};
    if (form.quantised != 0) {
        if (const auto code = QuantiseOpaque(image, form.quantised, indexed); code != noErr) return code;
    }
    const auto width = static_cast<std::size_t>(image.width());
    const std::size_t stride = (width * form.bits + 31) / 32 * 4;
    const std::size_t pixel_bytes = stride * static_cast<std::size_t>(image.height());
    out.reserve(out.size() + kFileHeader + kMasksHeader + indexed.palette.size() * 4 + pixel_bytes);
    AppendHeaders(image, settings, form.bits, indexed.palette, pixel_bytes, out);
    std::vector<std::byte> stored(stride);
    std::vector<std::uint32_t> scratch(width);
    for (std::int32_t y = image.height() - 1; y >= 0; --y) {
        if (form.bits == 32) {
            const auto* row = reinterpret_cast<const std::byte*>(image.Row(y));
            out.insert(out.end(), row, row + stride);
            continue;
        }
        if (form.bits == 24) {
            StoreBgr(OpaqueRow(image, y, scratch.data()), image.width(), stored.data());
        } else {
            const std::span indices(indexed.indices);
            PackIndices(indices.subspan(static_cast<std::size_t>(y) * width, width), form.bits,
                        stored.data());
        }
        out.insert(out.end(), stored.begin(), stored.end());
    }
    return noErr;
}

} // namespace

const ImageExporter kBmpExporter = {
    kTypes, "bmp", "BMP", kDepths, false, false, {}, Encode, PassOnUnchanged<kBmpCodec>};

} // namespace qt
