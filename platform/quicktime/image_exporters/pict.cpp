// QuickDraw pictures: one pixel map in a version 2 picture with the extended header. A frame and pixels of
// the same numbers, whatever the resolution: readers that know nothing of resolutions take the frame for the
// picture's size in pixels.
#include "platform/quicktime/image_codecs/packbits.h"
#include "platform/quicktime/image_codecs/pict_format.h"
#include "platform/quicktime/image_exporters/big_endian.h"
#include "platform/quicktime/image_exporters/index_rows.h"
#include "platform/quicktime/image_exporters/opaque_rows.h"
#include "platform/quicktime/image_exporters/quantise.h"
#include "platform/quicktime/image_exporters/resolution.h"
#include "platform/quicktime/transform_bands.h"

#include <algorithm>
#include <array>
#include <new>

namespace qt {
namespace {

constexpr std::array<OSType, 4> kTypes = {Code("PICT"), Code("pict"), Code("QDRW"), Code("qdrw")};
constexpr std::array<std::int32_t, 11> kDepths = {24, 1, 2, 4, 8, 16, 32, 33, 34, 36, 40};
constexpr std::int32_t kLargestSide = 32'767;
constexpr std::int32_t kLargestRow =
    0x3FF0;                               ///< bytes of a pixel map's row, of which the format takes 14 bits
constexpr std::size_t kShortRow = 8;      ///< bytes below which rows are not packed
constexpr std::size_t kByteCounted = 250; ///< bytes of the longest row whose packed size is one byte
/// Pixels below which some readers take rows of three components for unpacked ones.
constexpr std::int32_t kLeastOpaque = 3;

/// A part of the image: pixel maps can't be as wide as pictures.
struct Strip {
    std::int32_t left;
    std::int32_t width;
    std::int32_t height;
    std::size_t row_bytes;
};

struct Format {
    bool direct;
    unsigned pixel_size;
    unsigned components;
    unsigned component_bits;
    unsigned pack_type;
};

class PictWriter {
public:
    PictWriter(const ExportSettings& settings, EncodedBytes& out)
        : out_(out), resolution_(ResolutionOf(settings)) {}

    void Begin(std::int32_t width, std::int32_t height) {
        out_.resize(out_.size() + kPictFileHeader);
        picture_at_ = out_.size();
        Append16(out_, 0); // its size, once it is known
        AppendBounds(0, width, height);
        Append32(out_, 0x0011'02FF);
        Append32(out_, 0x0C00'FFFE);
        Append16(out_, 0);
        Append32(out_, resolution_.horizontal);
        Append32(out_, resolution_.vertical);
        AppendBounds(0, width, height);
        Append32(out_, 0);
        Append32(out_, 0x0001'000A); // clip to
        AppendBounds(0, width, height);
    }

    void AppendMap(const Strip& strip, const Format& format, std::span<const std::uint32_t> palette) {
        Append16(out_, format.direct ? 0x9A : 0x98);
        if (format.direct) Append32(out_, 0xFF);
        Append16(out_, static_cast<std::uint32_t>(strip.row_bytes) | 0x8000);
        AppendBounds(0, strip.width, strip.height);
        Append16(out_, 0); // version
        Append16(out_, format.pack_type);
        Append32(out_, 0);
        Append32(out_, resolution_.horizontal);
        Append32(out_, resolution_.vertical);
        Append16(out_, format.direct ? 16 : 0);
        Append16(out_, format.pixel_size);
        Append16(out_, format.components);
        Append16(out_, format.component_bits);
        out_.resize(out_.size() + 12);
        if (!format.direct) AppendColours(palette);
        AppendBounds(0, strip.width, strip.height);
        AppendBounds(strip.left, strip.width, strip.height);
        Append16(out_, 0); // copied
    }

    /// So many bytes are to come: else the result grows by copies.
    void Reserve(std::size_t bytes) { out_.reserve(out_.size() + bytes); }

    /// A row as a map holds it; `pack` is null for rows that stay as they are.
    void AppendRow(std::span<const std::byte> row, std::size_t row_bytes,
                   std::size_t (*pack)(std::span<const std::byte>, std::byte*)) {
        if (pack == nullptr) {
            out_.insert(out_.end(), row.begin(), row.end());
            return;
        }
        packed_.resize(PackedBound(row.size()));
        const std::size_t size = pack(row, packed_.data());
        AppendPackedRow(std::span(packed_).first(size), row_bytes);
    }

    /// A row that is packed already.
    void AppendPackedRow(std::span<const std::byte> packed, std::size_t row_bytes) {
        if (row_bytes > kByteCounted) {
            Append16(out_, static_cast<std::uint32_t>(packed.size()));
        } else {
            out_.push_back(static_cast<std::byte>(packed.size()));
        }
        out_.insert(out_.end(), packed.begin(), packed.end());
    }

    /// Operations begin at even places.
    void Align() {
        if ((out_.size() - picture_at_) % 2 != 0) out_.push_back(std::byte{0});
    }

    void End() {
        Append16(out_, 0xFF);
        Replace16(out_, picture_at_, static_cast<std::uint32_t>(out_.size() - picture_at_));
    }

private:
    void AppendBounds(std::int32_t left, std::int32_t width, std::int32_t height) {
        Append16(out_, 0);
        Append16(out_, static_cast<std::uint32_t>(left));
        Append16(out_, static_cast<std::uint32_t>(height));
        Append16(out_, static_cast<std::uint32_t>(left + width));
    }

    void AppendColours(std::span<const std::uint32_t> palette) {
        Append32(out_, 0); // seed
        Append16(out_, 0);
        Append16(out_, static_cast<std::uint32_t>(palette.size() - 1));
        for (std::size_t i = 0; i < palette.size(); ++i) {
            const std::uint32_t colour = Alpha(palette[i]) == 0 ? 0xFFFF'FFFF : palette[i];
            Append16(out_, static_cast<std::uint32_t>(i));
            Append16(out_, Red(colour) * 257);
            Append16(out_, Green(colour) * 257);
            Append16(out_, Blue(colour) * 257);
        }
    }

    EncodedBytes& out_;
    std::size_t picture_at_ = 0;
    DotsPerInch resolution_;
    std::vector<std::byte> packed_;
};

/// Rows of up to 250 bytes have a count of one byte, but some readers take two from 200 bytes on, or look at
/// the three bytes of a pixel that are stored.
bool IsMisread(std::size_t row_bytes, unsigned pixel_size) {
    return row_bytes > 200 && row_bytes <= (pixel_size == 32 ? 200 / 3 * 4 + 4 : kByteCounted);
}

/// Hands each strip to `append`, which writes it whole.
template <class Append>
void ForEachStrip(std::int32_t width, std::int32_t height, unsigned pixel_size, Append append) {
    const std::int32_t widest = kLargestRow * 8 / static_cast<std::int32_t>(pixel_size);
    const auto bytes_of = [&](std::int32_t strip_width) {
        return (static_cast<std::size_t>(strip_width) * pixel_size + 15) / 16 * 2;
    };
    for (std::int32_t left = 0; left < width;) {
        std::int32_t strip_width = std::min(widest, width - left);
        if (IsMisread(bytes_of(strip_width), pixel_size)) strip_width /= 2;
        const std::int32_t left_over = width - left - strip_width;
        if (left_over > 0 && left_over < kLeastOpaque) strip_width -= kLeastOpaque;
        append(Strip{left, strip_width, height, bytes_of(strip_width)});
        left += strip_width;
    }
}

/// A plane a component: alpha if there is any, red, green, blue.
void ToPlanes(const std::uint32_t* pixels, std::size_t count, bool alpha, std::byte* planes) {
    const auto plane = [&](int shift) {
        for (std::size_t x = 0; x < count; ++x) planes[x] = static_cast<std::byte>(pixels[x] >> shift);
        planes += count;
    };
    if (alpha) plane(24);
    plane(16);
    plane(8);
    plane(0);
}

/// Packs the rows of a strip, on several threads, a group of rows at a time so that what waits to be written
/// stays small.
void AppendPackedRows(PictWriter& writer, const PixelImage& image, const Strip& strip, const Format& format) {
    constexpr std::int32_t kGroup = 256;
    const auto count = static_cast<std::size_t>(strip.width);
    const std::size_t longest = PackedBound(format.components * count);
    const auto group = static_cast<std::size_t>(std::min(kGroup, strip.height));
    std::vector<std::byte> packed(longest * group);
    std::vector<std::size_t> sizes(group);
    for (std::int32_t top = 0; top < strip.height; top += kGroup) {
        const std::int32_t rows = std::min(kGroup, strip.height - top);
        DrawInBands(rows, std::int64_t{rows} * strip.width, [&](std::int32_t first, std::int32_t end) {
            std::vector<std::byte> planes(format.components * count);
            for (std::int32_t y = first; y < end; ++y) {
                const auto place = static_cast<std::size_t>(y);
                ToPlanes(image.Row(top + y) + strip.left, count, format.components == 4, planes.data());
                sizes[place] = PackBits(planes, &packed[place * longest]);
            }
        });
        for (std::size_t y = 0; y < static_cast<std::size_t>(rows); ++y)
            writer.AppendPackedRow(std::span(packed).subspan(y * longest, sizes[y]), strip.row_bytes);
    }
}

/// The image with its last column repeated to the least width. The frame clips what is too much.
PixelImage Widened(const PixelImage& image) {
    PixelImage wide;
    if (wide.Allocate(kLeastOpaque, image.height()) != noErr) throw std::bad_alloc();
    for (std::int32_t y = 0; y < image.height(); ++y) {
        const std::uint32_t* row = image.Row(y);
        for (std::int32_t x = 0; x < kLeastOpaque; ++x) wide.Row(y)[x] = row[std::min(x, image.width() - 1)];
    }
    return wide;
}

void AppendDirect(PictWriter& writer, const PixelImage& image) {
    if (!image.has_alpha && image.width() < kLeastOpaque) return AppendDirect(writer, Widened(image));
    const Format format = {true, 32, image.has_alpha ? 4U : 3U, 8, 4};
    writer.Reserve(PackedBound(format.components * static_cast<std::size_t>(image.width())) *
                   static_cast<std::size_t>(image.height()));
    ForEachStrip(image.width(), image.height(), format.pixel_size, [&](const Strip& strip) {
        writer.AppendMap(strip, format, {});
        if (strip.row_bytes < kShortRow) { // one pixel, as a word
            for (std::int32_t y = 0; y < strip.height; ++y) {
                std::array<std::byte, 4> word{};
                for (std::size_t i = 0; i < word.size(); ++i)
                    word[i] = static_cast<std::byte>(image.Row(y)[strip.left] >> (24 - 8 * i));
                writer.AppendRow(word, strip.row_bytes, nullptr);
            }
        } else {
            AppendPackedRows(writer, image, strip, format);
        }
        writer.Align();
    });
}

/// Eight bits as five, with an error that neighbours in a square of four by four share out.
std::uint32_t FiveBitsAt(std::uint32_t value, std::size_t x, std::int32_t y) {
    constexpr std::array<std::array<std::uint32_t, 4>, 4> kOrder = {
        {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}}};
    const std::uint32_t threshold = kOrder[static_cast<std::size_t>(y) % 4][x % 4] * 2 + 1; // of 32
    return (value * 31 * 32 + threshold * 255) / (255 * 32);
}

void AppendSixteen(PictWriter& writer, const PixelImage& image) {
    const Format format = {true, 16, 3, 5, 3};
    std::vector<std::uint32_t> scratch(static_cast<std::size_t>(image.width()));
    ForEachStrip(image.width(), image.height(), format.pixel_size, [&](const Strip& strip) {
        writer.AppendMap(strip, format, {});
        std::vector<std::byte> row(strip.row_bytes);
        const bool is_short = strip.row_bytes < kShortRow;
        for (std::int32_t y = 0; y < strip.height; ++y) {
            const std::uint32_t* pixels = OpaqueRow(image, y, scratch.data()) + strip.left;
            for (std::size_t x = 0; x < static_cast<std::size_t>(strip.width); ++x) {
                const std::uint32_t word = FiveBitsAt(Red(pixels[x]), x, y) << 10 |
                                           FiveBitsAt(Green(pixels[x]), x, y) << 5 |
                                           FiveBitsAt(Blue(pixels[x]), x, y);
                row[2 * x] = static_cast<std::byte>(word >> 8);
                row[2 * x + 1] = static_cast<std::byte>(word);
            }
            writer.AppendRow(row, strip.row_bytes, is_short ? nullptr : PackWords);
        }
        writer.Align();
    });
}

void AppendIndexed(PictWriter& writer, const IndexedImage& image, unsigned bits) {
    const Format format = {false, bits, 1, bits, 0};
    const auto image_width = static_cast<std::size_t>(image.width);
    ForEachStrip(image.width, image.height, bits, [&](const Strip& strip) {
        writer.AppendMap(strip, format, image.palette);
        std::vector<std::byte> row(strip.row_bytes);
        const bool is_short = strip.row_bytes < kShortRow;
        const std::uint8_t* indices = image.indices.data() + strip.left;
        for (std::int32_t y = 0; y < strip.height; ++y, indices += image_width) {
            PackIndices({indices, static_cast<std::size_t>(strip.width)}, bits, row.data());
            writer.AppendRow(row, strip.row_bytes, is_short ? nullptr : PackBits);
        }
        writer.Align();
    });
}

/// The nearest depth that there is.
std::int32_t DepthFor(const PixelImage& image, const ExportSettings& settings) {
    if (!settings.depth) return image.is_grey && !image.has_alpha ? 40 : 24;
    const auto* found = std::ranges::find(kDepths, *settings.depth);
    return found != kDepths.end() ? *found : 24;
}

ComponentResult Encode(const PixelImage& image, const ExportSettings& settings, EncodedBytes& out) {
    if (image.width() > kLargestSide || image.height() > kLargestSide) return codecSizeErr;
    const std::int32_t depth = DepthFor(image, settings);
    const bool is_direct = depth == 16 || depth == 24 || depth == 32;
    IndexedImage indexed{};
    if (!is_direct) {
        if (const auto code = Quantise(image, depth, indexed); code != noErr) return code;
    }
    PictWriter writer(settings, out);
    writer.Begin(image.width(), image.height());
    if (depth == 16) {
        AppendSixteen(writer, image);
    } else if (is_direct) {
        // Transparency goes with its pixels at 24 bits too: pictures have no mask that could hold it.
        AppendDirect(writer, image);
    } else {
        AppendIndexed(writer, indexed, static_cast<unsigned>(depth > 32 ? depth - 32 : depth));
    }
    writer.End();
    return noErr;
}

} // namespace

const ImageExporter kPictExporter = {kTypes, "pct", "PICT", kDepths, false, false, {}, Encode};

} // namespace qt
