// PCX: planes of 1, 2, 4 or 8 bits, run-length encoded row by row. A palette of 256 colours stands at the end
// of the file, a smaller one in the header.
#include "platform/quicktime/image_codecs/raster.h"

#include <algorithm>

namespace qt {
namespace {

constexpr std::array<OSType, 4> kTypes = {Code("PCXf"), Code("PCX "), Code("pcx "), Code("PCXF")};
constexpr std::size_t kHeaderSize = 128;
constexpr std::size_t kSmallPaletteAt = 16;
constexpr std::uint64_t kLargePalette = 768;
constexpr std::byte kLargePaletteMark{12};

struct Header {
    bool has_runs = true;
    unsigned version = 0;
    unsigned bits = 0; ///< of a plane
    unsigned planes = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t row_size = 0; ///< bytes of a row of one plane
    std::uint32_t horizontal_dpi = 0;
    std::uint32_t vertical_dpi = 0;
    std::array<std::byte, 48> small_palette{};
};

bool ParseHeader(std::span<const std::byte> bytes, Header& header) {
    if (bytes.size() < kHeaderSize || bytes[0] != std::byte{10}) return false;
    const auto byte = [&](std::size_t at) { return std::to_integer<unsigned>(bytes[at]); };
    const auto word = [&](std::size_t at) { return LittleEndian16(bytes.data() + at); };
    if (byte(1) > 5 || byte(2) > 1 || word(8) < word(4) || word(10) < word(6)) return false;
    header.version = byte(1);
    header.has_runs = byte(2) == 1;
    header.bits = byte(3);
    header.planes = byte(65);
    header.width = word(8) - word(4) + 1;
    header.height = word(10) - word(6) + 1;
    header.row_size = word(66);
    header.horizontal_dpi = word(12);
    header.vertical_dpi = word(14);
    std::copy_n(bytes.begin() + kSmallPaletteAt, header.small_palette.size(), header.small_palette.begin());
    const unsigned depth = header.bits * header.planes;
    const bool is_indexed = header.planes >= 1 &&
                            (header.bits == 1 || header.bits == 2 || header.bits == 4) &&
                            (depth == 1 || depth == 2 || depth == 3 || depth == 4);
    const bool is_bytes =
        header.bits == 8 && (header.planes == 1 || header.planes == 3 || header.planes == 4);
    const std::uint64_t needed = (std::uint64_t{header.width} * header.bits + 7) / 8;
    return (is_indexed || is_bytes) && header.row_size >= needed;
}

ComponentResult ReadHeader(DataSource& source, Header& header) {
    std::array<std::byte, kHeaderSize> bytes;
    const bool good =
        source.Read(0, bytes) == bytes.size() && ParseHeader(bytes, header) && source.GetSize() > kHeaderSize;
    return good ? ComponentResult{noErr} : codecBadDataErr;
}

ComponentResult Describe(const Header& header, ImageDescription& description) {
    description.cType = Code("PCX ");
    description.name = Name("PCX");
    description.spatialQuality = kLosslessQuality;
    const unsigned depth = header.bits * header.planes;
    description.depth = static_cast<std::int16_t>(depth == 3 ? 4 : depth);
    description.hRes = FixedResolution(header.horizontal_dpi);
    description.vRes = FixedResolution(header.vertical_dpi);
    return SetDimensions(description, header.width, header.height);
}

void TakeColours(std::span<const std::byte> triples, Palette& palette) {
    PixelsFromRgb(triples.data(), static_cast<std::int32_t>(triples.size() / 3), palette.data());
}

Palette ReadPalette(DataSource& source, const Header& header) {
    Palette palette;
    palette.fill(kBlack);
    const unsigned depth = header.bits * header.planes;
    if (depth == 1) {
        palette[1] = kWhite;
    } else if (depth < 8) {
        TakeColours(header.small_palette, palette);
    } else {
        for (std::uint32_t i = 0; i < palette.size(); ++i) palette[i] = Pixel(i, i, i);
        std::array<std::byte, 1 + kLargePalette> tail;
        const std::uint64_t size = source.GetSize();
        const bool has_palette = header.version >= 5 && size >= kHeaderSize + tail.size() &&
                                 source.Read(size - tail.size(), tail) == tail.size() &&
                                 tail[0] == kLargePaletteMark;
        if (has_palette) TakeColours(std::span(tail).subspan(1), palette);
    }
    return palette;
}

/// Runs may go on over the ends of rows: some encoders let them.
class RowReader {
public:
    RowReader(DataSource& source, bool has_runs) : reader_(source, kHeaderSize), has_runs_(has_runs) {}

    std::size_t Read(std::span<std::byte> row) {
        if (!has_runs_) return reader_.Read(row);
        std::size_t at = 0;
        while (at < row.size()) {
            if (left_ == 0) {
                const int head = reader_.Next();
                const bool is_run = head >= 0xC0;
                left_ = is_run ? static_cast<std::size_t>(head & 63) : 1;
                const int value = is_run ? reader_.Next() : head;
                if (value < 0) {
                    left_ = 0;
                    return at;
                }
                value_ = static_cast<std::byte>(value);
            }
            const std::size_t count = std::min(left_, row.size() - at);
            std::fill_n(row.begin() + static_cast<std::ptrdiff_t>(at), count, value_);
            at += count;
            left_ -= count;
        }
        return at;
    }

private:
    ByteReader reader_;
    bool has_runs_;
    std::size_t left_ = 0;
    std::byte value_{};
};

/// Brings the planes' bits of every pixel together as one index, the first plane lowest.
void MergePlanes(const std::byte* planes, const Header& header, std::byte* indices) {
    const unsigned mask = (1U << header.bits) - 1;
    for (std::uint32_t x = 0; x < header.width; ++x) {
        const std::uint32_t bit = x * header.bits;
        const unsigned shift = 8 - header.bits - bit % 8;
        unsigned index = 0;
        for (unsigned plane = 0; plane < header.planes; ++plane) {
            const auto byte = std::to_integer<unsigned>(planes[plane * header.row_size + bit / 8]);
            index |= (byte >> shift & mask) << (plane * header.bits);
        }
        indices[x] = static_cast<std::byte>(index);
    }
}

void PaintColours(const std::byte* planes, const Header& header, std::uint32_t* pixels) {
    const std::byte* red = planes;
    const std::byte* green = red + header.row_size;
    const std::byte* blue = green + header.row_size;
    const std::byte* alpha = header.planes == 4 ? blue + header.row_size : nullptr;
    const auto value = [](std::byte byte) { return std::to_integer<std::uint32_t>(byte); };
    for (std::uint32_t x = 0; x < header.width; ++x) {
        pixels[x] =
            Pixel(value(red[x]), value(green[x]), value(blue[x]), alpha != nullptr ? value(alpha[x]) : 255);
    }
}

bool Sniff(std::span<const std::byte> head) {
    Header header;
    return ParseHeader(head, header);
}

/// A run is 63 bytes of eight pixels, in two.
std::uint32_t MostPixelsOfByte(const Header& /*header*/) {
    return 252;
}

ComponentResult Paint(DataSource& source, const Header& header, PixelImage& image) {
    const Palette palette = ReadPalette(source, header);
    image.has_alpha = header.planes == 4 && header.bits == 8;
    image.is_grey = header.bits * header.planes <= 8 && IsGrey(palette, palette.size());
    RowReader reader(source, header.has_runs);
    std::vector<std::byte> planes(std::size_t{header.row_size} * header.planes);
    std::vector<std::byte> indices(header.width);
    for (std::int32_t y = 0; y < image.height(); ++y) {
        const std::size_t count = reader.Read(planes);
        if (count == 0 && y == 0) return codecBadDataErr;
        if (count == 0) {
            WhitenRows(image, y, image.height());
            break;
        }
        std::fill(planes.begin() + static_cast<std::ptrdiff_t>(count), planes.end(), std::byte{0xFF});
        if (header.bits == 8 && header.planes >= 3) {
            PaintColours(planes.data(), header, image.Row(y));
        } else {
            MergePlanes(planes.data(), header, indices.data());
            PixelsFromIndices(indices.data(), 8, palette, image.width(), image.Row(y));
        }
    }
    return noErr;
}

using Codec = HeaderCodec<Header, ReadHeader, Describe, MostPixelsOfByte, Paint>;

} // namespace

const ImageCodec kPcxCodec = {kTypes, Sniff, Codec::ReadFacts, true, Codec::Decode};

} // namespace qt
