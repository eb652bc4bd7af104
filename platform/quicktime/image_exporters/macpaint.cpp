// MacPaint: the format is one page of 576 by 720 black and white dots. An image keeps its size: it lies at
// the page's top left, and what does not fit is cut off.
#include "platform/quicktime/image_codecs/packbits.h"
#include "platform/quicktime/image_exporters/big_endian.h"
#include "platform/quicktime/image_exporters/index_rows.h"
#include "platform/quicktime/image_exporters/quantise.h"

#include <algorithm>
#include <array>

namespace qt {
namespace {

constexpr std::array<OSType, 2> kTypes = {Code("PNTG"), Code("pntg")};
constexpr std::array<std::int32_t, 1> kDepths = {1};
constexpr std::int32_t kWidth = 576;
constexpr std::int32_t kHeight = 720;
constexpr std::size_t kRowBytes = kWidth / 8;
constexpr std::size_t kHeader = 512;
constexpr std::int32_t kBlackAndWhite = 33; ///< the quantiser's depth of two levels of grey

ComponentResult CutToPage(const PixelImage& image, PixelImage& page) {
    const std::int32_t width = std::min(image.width(), kWidth);
    if (const auto code = page.Allocate(width, std::min(image.height(), kHeight)); code != noErr) return code;
    for (std::int32_t y = 0; y < page.height(); ++y) std::copy_n(image.Row(y), width, page.Row(y));
    page.has_alpha = image.has_alpha;
    page.is_grey = image.is_grey;
    return noErr;
}

/// Zero bits are white.
void ToDots(IndexedImage& dots) {
    for (std::uint8_t& index : dots.indices) index = Red(dots.palette[index]) < 128 ? 1 : 0;
}

ComponentResult Encode(const PixelImage& image, const ExportSettings& /*settings*/, EncodedBytes& out) {
    PixelImage page;
    IndexedImage dots{};
    if (const auto code = CutToPage(image, page); code != noErr) return code;
    if (const auto code = Quantise(page, kBlackAndWhite, dots); code != noErr) return code;
    ToDots(dots);
    out.resize(out.size() + kHeader); // version 0: without patterns
    std::array<std::byte, PackedBound(kRowBytes)> packed;
    const auto width = static_cast<std::size_t>(dots.width);
    for (std::int32_t y = 0; y < kHeight; ++y) {
        std::array<std::byte, kRowBytes> row{};
        if (y < dots.height) {
            PackIndices(std::span(dots.indices).subspan(static_cast<std::size_t>(y) * width, width), 1,
                        row.data());
        }
        const std::size_t size = PackBits(row, packed.data());
        out.insert(out.end(), packed.begin(), packed.begin() + static_cast<std::ptrdiff_t>(size));
    }
    return noErr;
}

} // namespace

const ImageExporter kMacPaintExporter = {kTypes, "pnt", "MacPaint", kDepths, false, false, {}, Encode};

} // namespace qt
