// SGI: rows from the bottom up, one channel after the other, plain or run-length encoded row by row.
#include "platform/quicktime/image_codecs/metadata_items.h"
#include "platform/quicktime/image_codecs/raster.h"

#include <algorithm>

namespace qt {
namespace {

constexpr std::array<OSType, 4> kTypes = {Code(".sgi"), Code(".SGI"), Code("sgi "), Code("SGI ")};
constexpr std::uint64_t kHeaderSize = 512;
constexpr std::size_t kNameAt = 24;
constexpr std::size_t kNameSize = 80;

struct Header {
    bool has_runs = false;
    unsigned sample_size = 1; ///< bytes
    std::uint32_t width = 0;
    std::uint32_t height = 1;
    std::uint32_t stored_channels = 1;
    std::uint32_t channels = 1; ///< of these, those that are read: grey, grey and alpha, RGB, RGB and alpha
};

bool ParseHeader(std::span<const std::byte> bytes, Header& header) {
    if (bytes.size() < 12 || BigEndian16(bytes.data()) != 0x01DA) return false;
    const auto storage = std::to_integer<unsigned>(bytes[2]);
    header.has_runs = storage == 1;
    header.sample_size = std::to_integer<unsigned>(bytes[3]);
    const std::uint32_t dimensions = BigEndian16(bytes.data() + 4);
    header.width = BigEndian16(bytes.data() + 6);
    if (dimensions >= 2) header.height = BigEndian16(bytes.data() + 8);
    if (dimensions >= 3) header.stored_channels = BigEndian16(bytes.data() + 10);
    header.channels = std::min(header.stored_channels, 4U);
    return storage <= 1 && (header.sample_size == 1 || header.sample_size == 2) && dimensions >= 1 &&
           dimensions <= 3 && header.channels > 0;
}

ComponentResult ReadHeader(DataSource& source, Header& header) {
    std::array<std::byte, 12> bytes;
    const bool good =
        source.Read(0, bytes) == bytes.size() && ParseHeader(bytes, header) && source.GetSize() > kHeaderSize;
    return good ? ComponentResult{noErr} : codecBadDataErr;
}

ComponentResult Describe(const Header& header, ImageDescription& description) {
    constexpr std::array<std::int16_t, 4> kDepths = {40, 32, 24, 32};
    description.cType = Code(".SGI");
    description.name = Name("SGI");
    description.spatialQuality = kLosslessQuality;
    description.depth = kDepths[header.channels - 1];
    return SetDimensions(description, header.width, header.height);
}

/// Offsets and lengths of the encoded rows of one channel, from the bottom up.
class RowTable {
public:
    bool Read(DataSource& source, const Header& header, std::uint32_t channel) {
        const std::uint64_t table = std::uint64_t{header.height} * header.stored_channels * 4;
        const std::uint64_t at = kHeaderSize + std::uint64_t{header.height} * channel * 4;
        offsets_.resize(std::size_t{header.height} * 4);
        lengths_.resize(offsets_.size());
        return source.Read(at, offsets_) == offsets_.size() &&
               source.Read(at + table, lengths_) == lengths_.size();
    }
    [[nodiscard]] std::uint64_t Offset(std::size_t row) const { return BigEndian32(&offsets_[row * 4]); }
    [[nodiscard]] std::size_t Length(std::size_t row) const { return BigEndian32(&lengths_[row * 4]); }

private:
    std::vector<std::byte> offsets_;
    std::vector<std::byte> lengths_;
};

/// The sample's highest 8 bits, rounded.
template <std::size_t kSampleSize>
std::byte SampleAt(const std::byte* stored) {
    if constexpr (kSampleSize == 1) return *stored;
    return static_cast<std::byte>(EightOfSixteenBits(BigEndian16(stored)));
}

/// Puts the samples of an encoded row into one byte of every pixel; answers how many there were.
template <std::size_t kSampleSize>
std::size_t ExpandRow(std::span<const std::byte> encoded, std::size_t width, std::byte* channel) {
    std::size_t x = 0;
    std::size_t at = 0;
    while (at + kSampleSize <= encoded.size() && x < width) {
        const auto head = std::to_integer<unsigned>(encoded[at + kSampleSize - 1]);
        at += kSampleSize;
        std::size_t count = std::min<std::size_t>(head & 127, width - x);
        if (count == 0) break;
        if ((head & 128) != 0) {
            count = std::min(count, (encoded.size() - at) / kSampleSize);
            for (std::size_t i = 0; i < count; ++i) {
                channel[(x + i) * 4] = SampleAt<kSampleSize>(&encoded[at + i * kSampleSize]);
            }
            at += count * kSampleSize;
        } else {
            if (at + kSampleSize > encoded.size()) break;
            const std::byte sample = SampleAt<kSampleSize>(&encoded[at]);
            for (std::size_t i = 0; i < count; ++i) channel[(x + i) * 4] = sample;
            at += kSampleSize;
        }
        x += count;
    }
    return x;
}

template <std::size_t kSampleSize>
std::size_t SpreadRow(std::span<const std::byte> stored, std::byte* channel) {
    const std::size_t count = stored.size() / kSampleSize;
    for (std::size_t x = 0; x < count; ++x) channel[x * 4] = SampleAt<kSampleSize>(&stored[x * kSampleSize]);
    return count;
}

/// Which byte of a pixel a stored channel goes to.
std::size_t ByteOfChannel(std::uint32_t channels, std::uint32_t channel) {
    constexpr std::array<std::size_t, 4> kColour = {2, 1, 0, 3};
    if (channels <= 2) return channel == 0 ? 0 : 3;
    return kColour[channel];
}

/// Answers whether any sample was there. What is missing stays as it is.
bool DecodeChannel(DataSource& source, const Header& header, std::uint32_t channel, PixelImage& image) {
    const std::size_t row_size = std::size_t{header.width} * header.sample_size;
    std::vector<std::byte> stored(header.has_runs ? row_size * 2 + std::size_t{2} * header.sample_size
                                                  : row_size);
    RowTable table;
    if (header.has_runs && !table.Read(source, header, channel)) return false;
    const auto expand = header.sample_size == 1 ? ExpandRow<1> : ExpandRow<2>;
    const auto spread = header.sample_size == 1 ? SpreadRow<1> : SpreadRow<2>;
    ByteReader reader(source, kHeaderSize + row_size * header.height * channel);
    std::size_t samples = 0;
    for (std::uint32_t row = 0; row < header.height; ++row) {
        std::byte* bytes = image.Bytes() + (header.height - 1 - row) * image.stride() +
                           ByteOfChannel(header.channels, channel);
        if (header.has_runs) {
            const std::size_t size = std::min(table.Length(row), stored.size());
            const std::size_t count = source.Read(table.Offset(row), std::span(stored).first(size));
            samples += expand(std::span(stored).first(count), header.width, bytes);
        } else {
            const std::size_t count = reader.Read(stored);
            samples += spread(std::span(stored).first(count), bytes);
            if (count < row_size) break;
        }
    }
    return samples > 0;
}

bool Sniff(std::span<const std::byte> head) {
    Header header;
    return ParseHeader(head, header);
}

/// A run is up to 128 pixels in two bytes.
std::uint32_t MostPixelsOfByte(const Header& header) {
    return header.has_runs ? 64 : 1;
}

ComponentResult Paint(DataSource& source, const Header& header, PixelImage& image) {
    image.Fill(kWhite);
    image.is_grey = header.channels <= 2;
    image.has_alpha = header.channels % 2 == 0;
    bool has_samples = false;
    for (std::uint32_t channel = 0; channel < header.channels; ++channel) {
        has_samples |= DecodeChannel(source, header, channel, image);
    }
    if (!has_samples) return codecBadDataErr;
    if (image.is_grey) {
        for (std::int32_t y = 0; y < image.height(); ++y) {
            std::uint32_t* row = image.Row(y);
            for (std::int32_t x = 0; x < image.width(); ++x) {
                row[x] = (row[x] & 0xFF00'0000) | (row[x] & 0xFF) * 0x01'0101;
            }
        }
    }
    return noErr;
}

ComponentResult ReadMetadata(DataSource& source, std::vector<MetadataItem>& items) {
    std::string name(kNameSize, '\0');
    name.resize(source.Read(kNameAt, std::as_writable_bytes(std::span(name))));
    name.resize(std::min(name.find('\0'), name.size()));
    if (name != "no name") AppendTextItem(TextItem("nam"), name, items);
    return noErr;
}

using Codec = HeaderCodec<Header, ReadHeader, Describe, MostPixelsOfByte, Paint>;

} // namespace

const ImageCodec kSgiCodec = {kTypes, Sniff, Codec::ReadFacts, true, Codec::Decode, ReadMetadata};

} // namespace qt
