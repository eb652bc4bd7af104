// TGA. The format has no signature: content counts as TGA only when every field of the header fits.
#include "platform/quicktime/image_codecs/metadata_items.h"
#include "platform/quicktime/image_codecs/raster.h"

#include <algorithm>

namespace qt {
namespace {

constexpr std::array<OSType, 4> kTypes = {Code("TPIC"), Code("tga "), Code("TGA "), Code("tpic")};
constexpr std::size_t kHeaderSize = 18;

enum Kind : unsigned { kPaletted = 1, kTrueColour = 2, kGreyScale = 3 };

struct Header {
    unsigned identifier_size = 0; ///< bytes of text behind the header
    bool has_map = false;
    unsigned kind = 0;
    bool has_runs = false;
    std::uint32_t map_first = 0;
    std::uint32_t map_count = 0;
    unsigned map_bits = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    unsigned bits = 0;
    unsigned alpha_bits = 0;
    bool from_right = false;
    bool from_top = false;
};

Header ParseHeader(const std::byte* bytes) {
    const auto byte = [&](std::size_t at) { return std::to_integer<unsigned>(bytes[at]); };
    Header header;
    header.identifier_size = byte(0);
    header.has_map = byte(1) == 1;
    header.kind = byte(2) & 7;
    header.has_runs = (byte(2) & 8) != 0;
    header.map_first = LittleEndian16(bytes + 3);
    header.map_count = LittleEndian16(bytes + 5);
    header.map_bits = byte(7);
    header.width = LittleEndian16(bytes + 12);
    header.height = LittleEndian16(bytes + 14);
    header.bits = byte(16);
    header.alpha_bits = byte(17) & 15;
    header.from_right = (byte(17) & 16) != 0;
    header.from_top = (byte(17) & 32) != 0;
    return header;
}

bool IsDecodable(const Header& header) {
    const auto is_colour = [](unsigned bits) { return bits == 15 || bits == 16 || bits == 24 || bits == 32; };
    switch (header.kind) {
    case kPaletted: return header.has_map && is_colour(header.map_bits) && header.bits == 8;
    case kTrueColour: return is_colour(header.bits);
    case kGreyScale: return header.bits == 8 || header.bits == 16;
    default: return false;
    }
}

bool HasAlpha(const Header& header) {
    if (header.kind == kPaletted) return header.map_bits == 32;
    return header.alpha_bits > 0 && (header.bits == 16 || header.bits == 32);
}

std::size_t BytesOf(unsigned bits) {
    return (bits + 7) / 8;
}

/// Of the first pixel.
std::uint64_t PixelOffset(const Header& header) {
    const std::uint64_t map = header.has_map ? header.map_count * BytesOf(header.map_bits) : 0;
    return kHeaderSize + header.identifier_size + map;
}

ComponentResult ReadHeader(DataSource& source, Header& header) {
    std::array<std::byte, kHeaderSize> bytes;
    if (source.Read(0, bytes) != bytes.size()) return codecBadDataErr;
    header = ParseHeader(bytes.data());
    const bool good = IsDecodable(header) && PixelOffset(header) < source.GetSize();
    return good ? ComponentResult{noErr} : codecBadDataErr;
}

ComponentResult Describe(const Header& header, ImageDescription& description) {
    description.cType = Code("tga ");
    description.name = Name("TGA");
    description.spatialQuality = kLosslessQuality;
    const bool is_grey = header.kind == kGreyScale && header.bits == 8;
    const bool has_wide_alpha = HasAlpha(header) && header.bits != 16;
    const unsigned depth = is_grey ? 40 : has_wide_alpha || header.kind == kGreyScale ? 32 : header.bits;
    description.depth = static_cast<std::int16_t>(depth == 15                        ? 16
                                                  : depth == 32 && !HasAlpha(header) ? 24
                                                                                     : depth);
    return SetDimensions(description, header.width, header.height);
}

/// A pixel or colour of 15, 16, 24 or 32 bits.
std::uint32_t ColourAt(const std::byte* stored, unsigned bits, bool has_alpha) {
    const std::uint32_t low = LittleEndian16(stored);
    if (bits <= 16) {
        const std::uint32_t transparent = has_alpha && (low & 0x8000) == 0 ? 0xFF00'0000 : 0;
        return PixelFrom555(low) ^ transparent;
    }
    const std::uint32_t colour = low | std::to_integer<std::uint32_t>(stored[2]) << 16;
    const std::uint32_t alpha = has_alpha ? std::to_integer<std::uint32_t>(stored[3]) : 255;
    return colour | alpha << 24;
}

std::size_t ReadPalette(ByteReader& reader, const Header& header, Palette& palette) {
    palette.fill(kBlack);
    const std::size_t entry = BytesOf(header.map_bits);
    std::size_t end = 0;
    std::array<std::byte, 4> stored{};
    for (std::size_t i = header.map_first; i < header.map_first + header.map_count; ++i) {
        if (reader.Read(std::span(stored).first(entry)) != entry) break;
        if (i >= palette.size()) continue;
        palette[i] = ColourAt(stored.data(), header.map_bits, header.map_bits == 32);
        end = i + 1;
    }
    return end;
}

/// Gives the stored pixels one row after the other; runs go on over the ends of rows.
class RowReader {
public:
    RowReader(ByteReader& reader, const Header& header)
        : reader_(reader), has_runs_(header.has_runs), pixel_(BytesOf(header.bits)) {}

    /// Answers how many bytes of the row there were.
    std::size_t Read(std::span<std::byte> row) {
        if (!has_runs_) return reader_.Read(row);
        std::size_t at = 0;
        while (at < row.size()) {
            if (left_ == 0 && !BeginPacket()) return at;
            const std::size_t bytes = std::min(left_ * pixel_, row.size() - at);
            if (!repeats_) {
                const std::size_t count = reader_.Read(row.subspan(at, bytes));
                if (count < bytes) return at + count / pixel_ * pixel_;
            } else {
                for (std::size_t i = 0; i < bytes; ++i) row[at + i] = repeated_[i % pixel_];
            }
            at += bytes;
            left_ -= bytes / pixel_;
        }
        return at;
    }

private:
    bool BeginPacket() {
        const int head = reader_.Next();
        if (head < 0) return false;
        repeats_ = (head & 128) != 0;
        const std::span<std::byte> repeated = std::span(repeated_).first(pixel_);
        if (repeats_ && reader_.Read(repeated) != pixel_) return false;
        left_ = static_cast<std::size_t>(head & 127) + 1;
        return true;
    }

    ByteReader& reader_;
    bool has_runs_;
    std::size_t pixel_;    ///< bytes
    std::size_t left_ = 0; ///< pixels of the packet
    bool repeats_ = false;
    std::array<std::byte, 4> repeated_{};
};

void PaintRow(const std::byte* stored, const Header& header, const Palette& palette, std::int32_t count,
              std::uint32_t* pixels) {
    const std::size_t size = BytesOf(header.bits);
    const bool has_alpha = HasAlpha(header);
    if (header.bits == 8) {
        PixelsFromIndices(stored, 8, palette, count, pixels);
    } else if (header.bits == 24) {
        PixelsFromBgr(stored, count, pixels);
    } else if (header.bits == 32 && has_alpha) {
        std::memcpy(pixels, stored, static_cast<std::size_t>(count) * 4);
    } else if (header.kind == kGreyScale) {
        for (std::int32_t x = 0; x < count; ++x, stored += size) {
            const auto grey = std::to_integer<std::uint32_t>(stored[0]);
            const auto alpha = has_alpha ? std::to_integer<std::uint32_t>(stored[1]) : 255;
            pixels[x] = Pixel(grey, grey, grey, alpha);
        }
    } else {
        for (std::int32_t x = 0; x < count; ++x, stored += size) {
            pixels[x] = ColourAt(stored, header.bits, has_alpha);
        }
    }
    if (header.from_right) std::reverse(pixels, pixels + count);
}

/// Whether the bits of alpha are some that pixels of this kind can have, or the 8 that careless programs tell
/// of any kind.
bool AlphaFits(const Header& header) {
    const bool is_grey_with_alpha = header.kind == kGreyScale && header.bits == 16;
    if (header.bits == 16 && !is_grey_with_alpha) return header.alpha_bits <= 1;
    return header.alpha_bits == 0 || header.alpha_bits == 8;
}

bool Sniff(std::span<const std::byte> head) {
    if (head.size() < kHeaderSize) return false;
    const Header header = ParseHeader(head.data());
    const auto byte = [&](std::size_t at) { return std::to_integer<unsigned>(head[at]); };
    const bool map_fits = header.has_map
                              ? header.map_count > 0 && header.map_first + header.map_count <= 65'536
                              : byte(1) == 0 && header.map_first == 0 && header.map_count == 0;
    const auto text =
        head.subspan(kHeaderSize, std::min<std::size_t>(header.identifier_size, head.size() - kHeaderSize));
    const bool is_text = std::ranges::all_of(text, [](std::byte character) {
        const auto code = std::to_integer<unsigned>(character);
        return code == 0 || code >= ' ' || code == '\t' || code == '\n' || code == '\r';
    });
    // Heads that are shorter are all the data.
    const bool has_pixels = head.size() == kSniffedBytes || PixelOffset(header) < head.size();
    return map_fits && AlphaFits(header) && is_text && has_pixels && byte(2) < 12 && byte(17) < 64 &&
           header.width > 0 && header.height > 0 && IsDecodable(header);
}

/// A run is up to 128 pixels in two bytes.
std::uint32_t MostPixelsOfByte(const Header& header) {
    return header.has_runs ? 64 : 1;
}

ComponentResult Paint(DataSource& source, const Header& header, PixelImage& image) {
    ByteReader reader(source, kHeaderSize + header.identifier_size);
    Palette palette;
    for (std::uint32_t i = 0; i < palette.size(); ++i) palette[i] = Pixel(i, i, i);
    image.is_grey = header.kind == kGreyScale;
    if (header.kind == kPaletted) {
        const std::size_t colours = ReadPalette(reader, header, palette);
        image.is_grey = IsGrey(palette, std::min<std::size_t>(colours, palette.size()));
    } else {
        reader.Skip(PixelOffset(header) - reader.Offset());
    }
    image.has_alpha = HasAlpha(header);
    RowReader rows(reader, header);
    std::vector<std::byte> stored(header.width * BytesOf(header.bits));
    for (std::int32_t y = 0; y < image.height(); ++y) {
        const std::size_t count = rows.Read(stored);
        if (count == 0 && y == 0) return codecBadDataErr;
        if (count < stored.size()) {
            WhitenRows(image, header.from_top ? y : 0, header.from_top ? image.height() : image.height() - y);
        }
        if (count == 0) break;
        const auto present = static_cast<std::int32_t>(count / BytesOf(header.bits));
        const std::int32_t at = header.from_top ? y : image.height() - 1 - y;
        const std::int32_t first = header.from_right ? image.width() - present : 0;
        PaintRow(stored.data(), header, palette, present, image.Row(at) + first);
        if (count < stored.size()) break;
    }
    return noErr;
}

/// The text behind the header.
ComponentResult ReadMetadata(DataSource& source, std::vector<MetadataItem>& items) {
    Header header;
    if (const auto code = ReadHeader(source, header); code != noErr) return code;
    std::string text(header.identifier_size, '\0');
    text.resize(source.Read(kHeaderSize, std::as_writable_bytes(std::span(text))));
    text.resize(std::min(text.find('\0'), text.size()));
    AppendTextItem(TextItem("cmt"), text, items);
    return noErr;
}

using Codec = HeaderCodec<Header, ReadHeader, Describe, MostPixelsOfByte, Paint>;

} // namespace

const ImageCodec kTgaCodec = {kTypes, Sniff, Codec::ReadFacts, true, Codec::Decode, ReadMetadata};

} // namespace qt
