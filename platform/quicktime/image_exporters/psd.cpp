// Photoshop documents: a merged image, its rows packed. Only a layer can be transparent: an image that is has
// one, and its merged image shows the layer in front of white, as readers expect.
#include "platform/quicktime/image_codecs/packbits.h"
#include "platform/quicktime/image_codecs/psd_header.h"
#include "platform/quicktime/image_exporters/big_endian.h"
#include "platform/quicktime/image_exporters/index_rows.h"
#include "platform/quicktime/image_exporters/opaque_rows.h"
#include "platform/quicktime/image_exporters/pass_on.h"
#include "platform/quicktime/image_exporters/quantise.h"
#include "platform/quicktime/image_exporters/resolution.h"

#include <algorithm>
#include <string_view>

namespace qt {
namespace {

constexpr std::array<OSType, 2> kTypes = {Code("8BPS"), Code("8bps")};
constexpr std::array<std::int32_t, 10> kDepths = {24, 32, 40, 8, 1, 2, 4, 33, 34, 36};
constexpr std::int32_t kGreyDepths = 32;
constexpr std::int32_t kLargestSide = 30'000;

struct Format {
    std::uint32_t mode;
    std::uint32_t channels;
    std::uint32_t bits; ///< of a sample
};

void AppendResource(EncodedBytes& out, std::uint32_t number, std::span<const std::byte> data) {
    Append32(out, Code("8BIM"));
    Append16(out, number);
    Append16(out, 0); // no name
    Append32(out, static_cast<std::uint32_t>(data.size()));
    out.insert(out.end(), data.begin(), data.end());
    if (data.size() % 2 != 0) out.push_back(std::byte{0});
}

void AppendResources(const ExportSettings& settings, EncodedBytes& out) {
    const DotsPerInch resolution = ResolutionOf(settings);
    EncodedBytes resources;
    EncodedBytes data;
    for (const std::uint32_t value : {resolution.horizontal, resolution.vertical}) {
        Append32(data, value);
        Append16(data, 1); // shown in dots per inch
        Append16(data, 1); // sizes in inches
    }
    AppendResource(resources, kPsdResolution, data);
    Append32(out, static_cast<std::uint32_t>(resources.size()));
    out.insert(out.end(), resources.begin(), resources.end());
}

/// Reds, greens and blues of 256 colours.
void AppendPalette(const std::vector<std::uint32_t>& palette, EncodedBytes& out) {
    constexpr std::size_t kColours = 256;
    Append32(out, 3 * kColours);
    for (const int shift : {16, 8, 0}) {
        for (std::size_t i = 0; i < kColours; ++i) {
            const std::uint32_t colour = i >= palette.size()      ? 0
                                         : Alpha(palette[i]) == 0 ? kWhite
                                                                  : palette[i];
            out.push_back(static_cast<std::byte>(colour >> shift));
        }
    }
}

void AppendHeader(const Format& format, std::int32_t width, std::int32_t height, EncodedBytes& out) {
    Append32(out, Code("8BPS"));
    Append16(out, 1);
    out.resize(out.size() + 6);
    Append16(out, format.channels);
    Append32(out, static_cast<std::uint32_t>(height));
    Append32(out, static_cast<std::uint32_t>(width));
    Append16(out, format.bits);
    Append16(out, format.mode);
}

/// Packs all rows of the channels from `first` up to `end` behind their sizes; `row_of` answers a row's
/// bytes.
template <class RowOf>
void AppendRows(std::uint32_t first, std::uint32_t end, std::int32_t height, EncodedBytes& out,
                RowOf row_of) {
    constexpr std::uint32_t kPacked = 1;
    Append16(out, kPacked);
    std::size_t sizes_at = out.size();
    out.resize(out.size() + std::size_t{2} * (end - first) * static_cast<std::size_t>(height));
    std::vector<std::byte> packed;
    for (std::uint32_t channel = first; channel < end; ++channel) {
        for (std::int32_t y = 0; y < height; ++y, sizes_at += 2) {
            const std::span<const std::byte> row = row_of(channel, y);
            packed.resize(PackedBound(row.size()));
            const std::size_t size = PackBits(row, packed.data());
            Replace16(out, sizes_at, static_cast<std::uint32_t>(size));
            out.insert(out.end(), packed.begin(), packed.begin() + static_cast<std::ptrdiff_t>(size));
        }
    }
}

/// Rows of the channels red, green, blue, alpha.
class ChannelRows {
public:
    ChannelRows(const PixelImage& image, bool in_front_of_white)
        : image_(image),
          in_front_of_white_(in_front_of_white),
          scratch_(static_cast<std::size_t>(image.width())),
          row_(scratch_.size()) {}

    std::span<const std::byte> operator()(std::uint32_t channel, std::int32_t y) {
        const bool is_alpha = channel == 3;
        const std::uint32_t* pixels =
            is_alpha || !in_front_of_white_ ? image_.Row(y) : OpaqueRow(image_, y, scratch_.data());
        const unsigned shift = is_alpha ? 24 : 16 - 8 * channel;
        std::byte* const bytes = row_.data();
        const std::size_t count = row_.size();
        for (std::size_t x = 0; x < count; ++x) bytes[x] = static_cast<std::byte>(pixels[x] >> shift);
        return row_;
    }

private:
    const PixelImage& image_;
    bool in_front_of_white_;
    std::vector<std::uint32_t> scratch_;
    std::vector<std::byte> row_;
};

/// The section of layers, with one that is the image.
void AppendLayer(const PixelImage& image, EncodedBytes& out) {
    constexpr std::uint32_t kMinusOne = 0xFFFF;
    constexpr std::string_view kName("\x05Image\0\0", 8);
    const std::size_t section_at = out.size();
    Append32(out, 0); // sizes of the section and of the layers, once they are known
    Append32(out, 0);
    Append16(out, kMinusOne); // one layer, and the merged image is transparent
    for (const std::int32_t edge : {0, 0, image.height(), image.width()}) {
        Append32(out, static_cast<std::uint32_t>(edge));
    }
    Append16(out, 4);
    const std::size_t channels_at = out.size();
    for (const std::uint32_t number : {0U, 1U, 2U, kMinusOne}) { // the last is transparency
        Append16(out, number);
        Append32(out, 0);
    }
    Append32(out, Code("8BIM"));
    Append32(out, Code("norm"));
    Append32(out, 0xFF00'0000); // opaque, not clipped, visible
    Append32(out, static_cast<std::uint32_t>(8 + kName.size()));
    Append32(out, 0); // no mask
    Append32(out, 0); // no blending ranges
    const auto name = std::as_bytes(std::span(kName));
    out.insert(out.end(), name.begin(), name.end());
    for (std::uint32_t channel = 0; channel < 4; ++channel) {
        const std::size_t begin = out.size();
        AppendRows(channel, channel + 1, image.height(), out, ChannelRows(image, false));
        Replace32(out, channels_at + std::size_t{6} * channel + 2,
                  static_cast<std::uint32_t>(out.size() - begin));
    }
    if ((out.size() - section_at) % 2 != 0) out.push_back(std::byte{0});
    Replace32(out, section_at + 4, static_cast<std::uint32_t>(out.size() - section_at - 8));
    Append32(out, 0); // no mask over all layers
    Replace32(out, section_at, static_cast<std::uint32_t>(out.size() - section_at - 4));
}

void EncodeColours(const PixelImage& image, bool alpha, const ExportSettings& settings, EncodedBytes& out) {
    const Format format = {PsdHeader::kRgb, alpha ? 4U : 3U, 8};
    AppendHeader(format, image.width(), image.height(), out);
    Append32(out, 0); // no palette
    AppendResources(settings, out);
    if (alpha) {
        AppendLayer(image, out);
    } else {
        Append32(out, 0);
    }
    AppendRows(0, format.channels, image.height(), out, ChannelRows(image, true));
}

bool IsBlackAndWhite(const std::vector<std::uint32_t>& palette) {
    return std::ranges::all_of(palette,
                               [](std::uint32_t colour) { return colour == kBlack || colour == kWhite; });
}

ComponentResult EncodeIndices(const PixelImage& image, std::int32_t depth, const ExportSettings& settings,
                              EncodedBytes& out) {
    IndexedImage indexed{};
    if (const auto code = Quantise(image, depth, indexed); code != noErr) return code;
    const bool is_bitmap = (depth == 1 || depth == kGreyDepths + 1) && IsBlackAndWhite(indexed.palette);
    const bool is_grey = depth > kGreyDepths;
    const Format format = {is_bitmap ? PsdHeader::kBitmap
                           : is_grey ? PsdHeader::kGrey
                                     : PsdHeader::kIndexed,
                           1, is_bitmap ? 1U : 8U};
    for (std::uint8_t& index : indexed.indices) {
        const std::uint32_t colour = indexed.palette[index];
        if (is_bitmap) index = colour == kBlack ? 1 : 0;
        if (is_grey && !is_bitmap) index = static_cast<std::uint8_t>(Red(colour));
    }
    AppendHeader(format, image.width(), image.height(), out);
    if (format.mode == PsdHeader::kIndexed) {
        AppendPalette(indexed.palette, out);
    } else {
        Append32(out, 0);
    }
    AppendResources(settings, out);
    Append32(out, 0); // no layers
    const auto width = static_cast<std::size_t>(image.width());
    std::vector<std::byte> row((width * format.bits + 7) / 8);
    AppendRows(0, 1, image.height(), out, [&](std::uint32_t /*channel*/, std::int32_t y) {
        PackIndices(std::span(indexed.indices).subspan(static_cast<std::size_t>(y) * width, width),
                    format.bits, row.data());
        return std::span<const std::byte>(row);
    });
    return noErr;
}

/// The nearest depth that there is.
std::int32_t DepthFor(const PixelImage& image, const ExportSettings& settings) {
    const std::int32_t usual = image.has_alpha ? 32 : image.is_grey ? 40 : 24;
    const auto* found = std::ranges::find(kDepths, settings.depth.value_or(usual));
    return found != kDepths.end() ? *found : 24;
}

ComponentResult Encode(const PixelImage& image, const ExportSettings& settings, EncodedBytes& out) {
    if (image.width() > kLargestSide || image.height() > kLargestSide) return codecSizeErr;
    const std::int32_t depth = DepthFor(image, settings);
    if (depth != 24 && depth != 32) return EncodeIndices(image, depth, settings, out);
    const std::size_t most = 3 * PackedBound(static_cast<std::size_t>(image.width()));
    out.reserve(out.size() + most * static_cast<std::size_t>(image.height())); // else it grows by copies
    EncodeColours(image, depth == 32 && image.has_alpha, settings, out);
    return noErr;
}

} // namespace

const ImageExporter kPhotoshopExporter = {
    kTypes, "psd", "Photoshop", kDepths, false, false, {}, Encode, PassOnUnchanged<kPhotoshopCodec>};

} // namespace qt
