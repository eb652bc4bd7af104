// What the formats that store plain rows share: reading front to back, and turning stored samples into
// pixels.
#pragma once

#include "platform/quicktime/image_codecs/codec.h"

#include <array>
#include <cstring>

namespace qt {

inline constexpr std::int32_t kLosslessQuality = 1024;
inline constexpr std::uint32_t kWhite = Pixel(255, 255, 255);
inline constexpr std::uint32_t kBlack = Pixel(0, 0, 0);

/// Unsigned integers of files, least significant byte first.
constexpr std::uint32_t LittleEndian16(const std::byte* bytes) {
    return std::to_integer<std::uint32_t>(bytes[0]) | std::to_integer<std::uint32_t>(bytes[1]) << 8;
}
constexpr std::uint32_t LittleEndian32(const std::byte* bytes) {
    return LittleEndian16(bytes) | LittleEndian16(bytes + 2) << 16;
}

/// The type of a readable text item: the copyright sign, then three characters.
constexpr OSType TextItem(const char (&characters)[4]) {
    OSType code = 0xA9;
    for (int i = 0; i < 3; ++i) code = code << 8 | static_cast<unsigned char>(characters[i]);
    return code;
}

/// Colours by index; indices without a colour are black.
using Palette = std::array<std::uint32_t, 256>;

/// Reads a source from front to back through a buffer.
class ByteReader {
public:
    ByteReader(DataSource& source, std::uint64_t offset) : source_(source), offset_(offset) {}

    /// The next byte, or -1 at the end of the data.
    int Next() {
        if (next_ == end_ && !Fill()) return -1;
        return std::to_integer<int>(buffer_[next_++]);
    }
    /// How many bytes there were: fewer than asked only at the end of the data.
    std::size_t Read(std::span<std::byte> bytes);
    void Skip(std::uint64_t count);
    /// Of the next byte, in the source.
    [[nodiscard]] std::uint64_t Offset() const { return offset_ - (end_ - next_); }

private:
    bool Fill();

    DataSource& source_;
    std::uint64_t offset_; ///< of the byte behind the buffer
    std::size_t next_ = 0;
    std::size_t end_ = 0;
    std::array<std::byte, 16'384> buffer_;
};

/// Whether so many bytes can hold enough of an image that memory for all of it is worth taking, when a byte
/// holds at most so many pixels. Data that was cut may have lost most of its rows, but not all.
bool DataHolds(std::uint64_t data_bytes, std::uint32_t width, std::uint32_t height,
               std::uint32_t most_pixels_per_byte);

/// Room for an image of the described size.
ComponentResult AllocateFor(const ImageDescription& description, PixelImage& image);
/// The same, when DataHolds says that it is worth it; else codecBadDataErr.
ComponentResult AllocateFor(const ImageDescription& description, const DataSource& source,
                            std::uint32_t most_pixels_per_byte, PixelImage& image);

/// The operations of a codec whose images have a header that tells all of their facts.
template <class Header, ComponentResult (*ReadHeader)(DataSource&, Header&),
          ComponentResult (*Describe)(const Header&, ImageDescription&),
          std::uint32_t (*MostPixelsOfByte)(const Header&),
          ComponentResult (*Paint)(DataSource&, const Header&, PixelImage&)>
struct HeaderCodec {
    static ComponentResult ReadFacts(DataSource& source, ImageFacts& facts) {
        Header header;
        if (const auto code = ReadHeader(source, header); code != noErr) return code;
        facts.data_size = source.GetSize();
        return Describe(header, facts.description);
    }

    /// Makes room for the image, when DataHolds says for MostPixelsOfByte that it is worth it, and lets Paint
    /// fill it.
    static ComponentResult Decode(DataSource& source, std::uint32_t /*index*/, PixelImage& image) {
        Header header;
        ImageDescription description;
        if (const auto code = ReadHeader(source, header); code != noErr) return code;
        if (const auto code = Describe(header, description); code != noErr) return code;
        if (const auto code = AllocateFor(description, source, MostPixelsOfByte(header), image);
            code != noErr)
            return code;
        return Paint(source, header, image);
    }
};

/// Paints the rows from `first` up to `end` white.
void WhitenRows(PixelImage& image, std::int32_t first, std::int32_t end);

/// Rows of 24-bit pixels.
void PixelsFromBgr(const std::byte* samples, std::int32_t count, std::uint32_t* pixels);
void PixelsFromRgb(const std::byte* samples, std::int32_t count, std::uint32_t* pixels);
/// Rows of indices of 1, 2, 4 or 8 bits, the leftmost in the highest bits of a byte.
void PixelsFromIndices(const std::byte* packed, unsigned bits, const Palette& palette, std::int32_t count,
                       std::uint32_t* pixels);

/// Whether the first colours of a palette are all grey.
bool IsGrey(const Palette& palette, std::size_t count);

/// Five bits as eight: the highest bits repeated behind.
constexpr std::uint32_t FiveBits(std::uint32_t value) {
    return (value & 31) << 3 | (value & 31) >> 2;
}
/// A word of 1 unused or alpha bit and 5 bits each of red, green and blue, as an opaque pixel.
constexpr std::uint32_t PixelFrom555(std::uint32_t word) {
    return Pixel(FiveBits(word >> 10), FiveBits(word >> 5), FiveBits(word));
}
/// Sixteen bits as eight, rounded.
constexpr std::uint32_t EightOfSixteenBits(std::uint32_t value) {
    return (value * 255 + 32'767) / 65'535;
}

} // namespace qt
