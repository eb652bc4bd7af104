// BMP: the headers of OS/2 and of Windows, uncompressed or run-length encoded rows.
#include "platform/quicktime/image_codecs/raster.h"

#include <algorithm>
#include <bit>

namespace qt {
namespace {

constexpr std::array<OSType, 4> kTypes = {Code("BMPf"), Code("WRLE"), Code("BMP "), Code("bmp ")};
constexpr std::uint32_t kFileHeader = 14; ///< bytes in front of the image header
constexpr std::uint32_t kCoreHeader = 12; ///< bytes of OS/2's first image header
constexpr std::uint32_t kInfoHeader = 40;
constexpr std::uint32_t kOs2Header = 64;
constexpr std::uint32_t kLargestHeader = 124;
constexpr double kMetresPerInch = 0.0254;

enum Compression : std::uint32_t { kNone = 0, kRle8 = 1, kRle4 = 2, kBitFields = 3, kAlphaBitFields = 6 };
enum Channel : std::size_t { kRed = 0, kGreen = 1, kBlue = 2, kAlpha = 3 };

using Masks = std::array<std::uint32_t, 4>;
constexpr Masks kMasks555 = {0x7C00, 0x3E0, 0x1F, 0};
constexpr Masks kMasksBgrx = {0xFF'0000, 0xFF00, 0xFF, 0};

struct Header {
    std::uint32_t size = 0; ///< of the image header
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool top_down = false;
    std::uint32_t bits = 0;
    std::uint32_t compression = kNone;
    std::uint32_t colours = 0; ///< of the palette
    std::uint64_t pixels_at = 0;
    double horizontal_dpi = 0.0;
    double vertical_dpi = 0.0;
    Masks masks{};
};

void TakeCoreHeader(const std::byte* fields, Header& header) {
    header.width = LittleEndian16(fields + 4);
    header.height = LittleEndian16(fields + 6);
    header.bits = LittleEndian16(fields + 10);
}

/// `fields` holds kLargestHeader bytes: the header, and behind a short one what follows it.
void TakeInfoHeader(const std::byte* fields, Header& header) {
    header.width = LittleEndian32(fields + 4);
    header.height = LittleEndian32(fields + 8);
    header.top_down = (header.height & 0x8000'0000) != 0;
    if (header.top_down) header.height = 0U - header.height;
    header.bits = LittleEndian16(fields + 14);
    if (header.size >= 20) header.compression = LittleEndian32(fields + 16);
    if (header.size < kInfoHeader) return;
    // Signed: below 0 is no resolution, not one beyond all measure.
    header.horizontal_dpi = static_cast<std::int32_t>(LittleEndian32(fields + 24)) * kMetresPerInch;
    header.vertical_dpi = static_cast<std::int32_t>(LittleEndian32(fields + 28)) * kMetresPerInch;
    header.colours = LittleEndian32(fields + 32);
    header.masks = header.bits == 16 ? kMasks555 : kMasksBgrx;
    if (header.compression != kBitFields && header.compression != kAlphaBitFields) return;
    for (const Channel channel : {kRed, kGreen, kBlue, kAlpha}) {
        header.masks[channel] = LittleEndian32(fields + 40 + 4 * channel);
    }
    const bool has_alpha_mask = header.size >= 56 || header.compression == kAlphaBitFields;
    if (!has_alpha_mask) header.masks[kAlpha] = 0;
}

bool IsKnownSize(std::uint32_t size) {
    return size == kCoreHeader || (size >= 16 && size <= kLargestHeader);
}

bool IsDecodable(const Header& header) {
    const std::uint32_t bits = header.bits;
    switch (header.compression) {
    case kNone:
        return bits == 1 || bits == 2 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
    case kRle8: return bits == 8 && !header.top_down;
    case kRle4: return bits == 4 && !header.top_down;
    case kBitFields:
        return header.size != kOs2Header && (bits == 16 || bits == 32); // there it is a fax encoding
    case kAlphaBitFields: return bits == 16 || bits == 32;
    default: return false;
    }
}

ComponentResult ReadHeader(DataSource& source, Header& header) {
    std::array<std::byte, kFileHeader + kLargestHeader> bytes{};
    const std::size_t count = source.Read(0, bytes);
    if (count < kFileHeader + kCoreHeader || bytes[0] != std::byte{'B'} || bytes[1] != std::byte{'M'})
        return codecBadDataErr;
    const std::byte* fields = bytes.data() + kFileHeader;
    header.size = LittleEndian32(fields);
    if (!IsKnownSize(header.size) || count < kFileHeader + header.size) return codecBadDataErr;
    if (header.size == kCoreHeader) {
        TakeCoreHeader(fields, header);
    } else {
        TakeInfoHeader(fields, header);
    }
    header.pixels_at = LittleEndian32(bytes.data() + 10);
    const bool pixels_begin =
        header.pixels_at >= kFileHeader + header.size && header.pixels_at < source.GetSize();
    return IsDecodable(header) && pixels_begin ? ComponentResult{noErr} : codecBadDataErr;
}

ComponentResult Describe(const Header& header, ImageDescription& description) {
    description.cType = Code("WRLE");
    description.name = Name("BMP");
    description.spatialQuality = kLosslessQuality;
    const bool is_opaque = header.bits == 32 && header.masks[kAlpha] == 0;
    description.depth = static_cast<std::int16_t>(is_opaque ? 24 : header.bits);
    description.hRes = FixedResolution(header.horizontal_dpi);
    description.vRes = FixedResolution(header.vertical_dpi);
    return SetDimensions(description, header.width, header.height);
}

/// Answers how many colours there are.
std::size_t ReadPalette(DataSource& source, const Header& header, Palette& palette) {
    const std::size_t most = std::size_t{1} << header.bits;
    const std::size_t entry = header.size == kCoreHeader ? 3 : 4;
    const std::uint64_t at = kFileHeader + header.size;
    std::size_t count = header.colours > 0 && header.colours < most ? header.colours : most;
    count = static_cast<std::size_t>(std::min<std::uint64_t>(count, (header.pixels_at - at) / entry));
    std::array<std::byte, 1024> bytes;
    count = source.Read(at, std::span(bytes).first(count * entry)) / entry;
    palette.fill(kBlack);
    for (std::size_t i = 0; i < count; ++i) {
        palette[i] = LittleEndian32(bytes.data() + i * entry) | 0xFF00'0000;
    }
    return count;
}

/// A channel of up to 32 bits anywhere in a word, as a table from its highest 8 bits.
struct MaskedChannel {
    explicit MaskedChannel(std::uint32_t mask) {
        if (mask == 0) return;
        const int lowest = std::countr_zero(mask);
        const int width = 32 - std::countl_zero(mask) - lowest;
        const int bits = std::min(width, 8);
        shift = lowest + width - bits;
        last = (1U << bits) - 1;
        for (std::uint32_t value = 0; value <= last; ++value) {
            std::uint32_t byte = value << (8 - bits);
            for (int filled = bits; filled < 8; filled *= 2) byte |= byte >> filled;
            scaled[value] = static_cast<std::uint8_t>(byte);
        }
    }
    [[nodiscard]] std::uint32_t Of(std::uint32_t word) const { return scaled[word >> shift & last]; }

    int shift = 0;
    std::uint32_t last = 0;
    std::array<std::uint8_t, 256> scaled{};
};

class RowPainter {
public:
    RowPainter(const Header& header, const Palette& palette)
        : header_(header),
          palette_(palette),
          red_(header.masks[kRed]),
          green_(header.masks[kGreen]),
          blue_(header.masks[kBlue]),
          alpha_(header.masks[kAlpha]) {}

    void Paint(const std::byte* stored, std::int32_t count, std::uint32_t* pixels) const {
        switch (header_.bits) {
        case 16: PaintWords(stored, 2, LittleEndian16, count, pixels); break;
        case 24: PixelsFromBgr(stored, count, pixels); break;
        case 32: PaintLongs(stored, count, pixels); break;
        default: PixelsFromIndices(stored, header_.bits, palette_, count, pixels);
        }
    }

private:
    void PaintLongs(const std::byte* stored, std::int32_t count, std::uint32_t* pixels) const {
        const Masks& masks = header_.masks;
        const bool is_plain = std::equal(masks.begin(), masks.begin() + kAlpha, kMasksBgrx.begin());
        const bool is_opaque = masks[kAlpha] == 0;
        if (!is_plain || (!is_opaque && masks[kAlpha] != 0xFF00'0000)) {
            PaintWords(stored, 4, LittleEndian32, count, pixels);
            return;
        }
        std::memcpy(pixels, stored, static_cast<std::size_t>(count) * 4);
        if (is_opaque) {
            for (std::int32_t x = 0; x < count; ++x) pixels[x] |= 0xFF00'0000;
        }
    }

    template <class Word>
    void PaintWords(const std::byte* stored, std::size_t size, Word word_at, std::int32_t count,
                    std::uint32_t* pixels) const {
        const bool is_opaque = header_.masks[kAlpha] == 0;
        for (std::int32_t x = 0; x < count; ++x, stored += size) {
            const std::uint32_t word = word_at(stored);
            const std::uint32_t alpha = is_opaque ? 255 : alpha_.Of(word);
            pixels[x] = Pixel(red_.Of(word), green_.Of(word), blue_.Of(word), alpha);
        }
    }

    const Header& header_;
    const Palette& palette_;
    MaskedChannel red_, green_, blue_, alpha_;
};

/// Answers how many rows there were, of which the last may be cut.
std::int32_t DecodeRows(DataSource& source, const Header& header, const Palette& palette, PixelImage& image) {
    const RowPainter painter(header, palette);
    const std::size_t stride = (std::size_t{header.width} * header.bits + 31) / 32 * 4;
    std::vector<std::byte> stored(stride);
    ByteReader reader(source, header.pixels_at);
    for (std::int32_t y = 0; y < image.height(); ++y) {
        const std::size_t count = reader.Read(stored);
        if (count == 0) return y;
        std::fill(stored.begin() + static_cast<std::ptrdiff_t>(count), stored.end(), std::byte{});
        painter.Paint(stored.data(), image.width(), image.Row(header.top_down ? y : image.height() - 1 - y));
        if (count < stride && y + 1 < image.height()) return y + 1;
    }
    return image.height();
}

/// Runs of bytes, each with one index or two; pixels that are jumped over have the first colour.
class RunDecoder {
public:
    RunDecoder(DataSource& source, const Header& header, const Palette& palette, PixelImage& image)
        : reader_(source, header.pixels_at),
          is_narrow_(header.compression == kRle4),
          palette_(palette),
          image_(image) {}

    /// Answers how many rows there were.
    std::int32_t Decode() {
        image_.Fill(palette_[0]);
        while (y_ < image_.height()) {
            const int count = reader_.Next();
            const int value = reader_.Next();
            if (value < 0) return y_;
            if (count > 0) {
                for (int i = 0; i < count; ++i) Put(IndexOf(value, i));
            } else if (value == 0) {
                x_ = 0;
                ++y_;
            } else if (value == 1) {
                break;
            } else if (value == 2) {
                x_ = std::min(x_ + std::max(reader_.Next(), 0), image_.width()); // as far as the row goes
                y_ += std::max(reader_.Next(), 0);
            } else {
                CopyIndices(value);
            }
        }
        return image_.height();
    }

private:
    [[nodiscard]] int IndexOf(int byte, int i) const {
        return !is_narrow_ ? byte : i % 2 == 0 ? byte >> 4 : byte & 15;
    }

    void Put(int index) {
        if (x_ < image_.width()) {
            image_.Row(image_.height() - 1 - y_)[x_++] = palette_[static_cast<std::size_t>(index)];
        }
    }

    void CopyIndices(int count) {
        int byte = 0;
        for (int i = 0; i < count; ++i) {
            if (!is_narrow_ || i % 2 == 0) byte = reader_.Next();
            if (byte < 0) return;
            Put(IndexOf(byte, i));
        }
        const int bytes = is_narrow_ ? (count + 1) / 2 : count;
        if (bytes % 2 != 0) reader_.Next();
    }

    ByteReader reader_;
    bool is_narrow_;
    const Palette& palette_;
    PixelImage& image_;
    std::int32_t x_ = 0;
    std::int32_t y_ = 0; ///< from the bottom
};

bool Sniff(std::span<const std::byte> head) {
    return head.size() >= kFileHeader + 4 && head[0] == std::byte{'B'} && head[1] == std::byte{'M'} &&
           IsKnownSize(LittleEndian32(head.data() + kFileHeader));
}

bool HasRuns(const Header& header) {
    return header.compression == kRle8 || header.compression == kRle4;
}

/// A run is 255 pixels in two bytes.
std::uint32_t MostPixelsOfByte(const Header& header) {
    return HasRuns(header) ? 128 : std::max(8 / header.bits, 1U);
}

ComponentResult Paint(DataSource& source, const Header& header, PixelImage& image) {
    Palette palette{};
    const std::size_t colours = header.bits <= 8 ? ReadPalette(source, header, palette) : 0;
    image.has_alpha = header.masks[kAlpha] != 0;
    image.is_grey = colours > 0 && IsGrey(palette, colours);
    const std::int32_t rows = HasRuns(header) ? RunDecoder(source, header, palette, image).Decode()
                                              : DecodeRows(source, header, palette, image);
    if (rows == 0) return codecBadDataErr;
    const std::int32_t missing = image.height() - rows;
    if (header.top_down) {
        WhitenRows(image, rows, image.height());
    } else {
        WhitenRows(image, 0, missing);
    }
    return noErr;
}

using Codec = HeaderCodec<Header, ReadHeader, Describe, MostPixelsOfByte, Paint>;

} // namespace

const ImageCodec kBmpCodec = {kTypes, Sniff, Codec::ReadFacts, true, Codec::Decode};

} // namespace qt
