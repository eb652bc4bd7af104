#include "platform/quicktime/image_codecs/raster.h"

#include <algorithm>

namespace qt {
namespace {

std::uint32_t Word(const std::byte* bytes) {
    std::uint32_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// Three bytes in the low bits of a word, the first lowest, as an opaque pixel.
template <bool kRedFirst>
std::uint32_t Opaque(std::uint32_t three) {
    if constexpr (kRedFirst) return __builtin_bswap32(three) >> 8 | 0xFF00'0000;
    return three | 0xFF00'0000;
}

/// Four pixels are three words, which is far quicker than twelve bytes one by one.
template <bool kRedFirst>
void PixelsFrom24(const std::byte* samples, std::int32_t count, std::uint32_t* pixels) {
    std::int32_t x = 0;
    for (; x + 4 <= count; x += 4, samples += 12) {
        const std::uint32_t first = Word(samples);
        const std::uint32_t second = Word(samples + 4);
        const std::uint32_t third = Word(samples + 8);
        pixels[x] = Opaque<kRedFirst>(first & 0xFF'FFFF);
        pixels[x + 1] = Opaque<kRedFirst>((first >> 24 | second << 8) & 0xFF'FFFF);
        pixels[x + 2] = Opaque<kRedFirst>((second >> 16 | third << 16) & 0xFF'FFFF);
        pixels[x + 3] = Opaque<kRedFirst>(third >> 8);
    }
    for (; x < count; ++x, samples += 3) {
        pixels[x] =
            Opaque<kRedFirst>(LittleEndian16(samples) | std::to_integer<std::uint32_t>(samples[2]) << 16);
    }
}

} // namespace

std::size_t ByteReader::Read(std::span<std::byte> bytes) {
    const std::size_t buffered = std::min(bytes.size(), end_ - next_);
    std::copy_n(buffer_.begin() + static_cast<std::ptrdiff_t>(next_), buffered, bytes.begin());
    next_ += buffered;
    if (buffered == bytes.size()) return buffered;
    std::span<std::byte> rest = bytes.subspan(buffered);
    if (rest.size() >= buffer_.size()) {
        const std::size_t count = source_.Read(offset_, rest);
        offset_ += count;
        return buffered + count;
    }
    if (!Fill()) return buffered;
    return buffered + Read(rest);
}

void ByteReader::Skip(std::uint64_t count) {
    const auto buffered = static_cast<std::size_t>(std::min<std::uint64_t>(count, end_ - next_));
    next_ += buffered;
    offset_ = std::min(offset_ + (count - buffered), std::max(offset_, source_.GetSize()));
}

bool ByteReader::Fill() {
    next_ = 0;
    end_ = source_.Read(offset_, buffer_);
    offset_ += end_;
    return end_ > 0;
}

bool DataHolds(std::uint64_t data_bytes, std::uint32_t width, std::uint32_t height,
               std::uint32_t most_pixels_per_byte) {
    constexpr std::uint64_t kAlwaysTaken = 1 << 16;
    constexpr std::uint64_t kSmallestPart = 64;
    const std::uint64_t pixels = std::uint64_t{width} * height;
    return pixels <= kAlwaysTaken || data_bytes * most_pixels_per_byte >= pixels / kSmallestPart;
}

ComponentResult AllocateFor(const ImageDescription& description, PixelImage& image) {
    return image.Allocate(description.width, description.height);
}

ComponentResult AllocateFor(const ImageDescription& description, const DataSource& source,
                            std::uint32_t most_pixels_per_byte, PixelImage& image) {
    const auto width = static_cast<std::uint32_t>(description.width);
    const auto height = static_cast<std::uint32_t>(description.height);
    const bool is_worth_it = DataHolds(source.GetSize(), width, height, most_pixels_per_byte);
    return is_worth_it ? AllocateFor(description, image) : ComponentResult{codecBadDataErr};
}

void WhitenRows(PixelImage& image, std::int32_t first, std::int32_t end) {
    for (std::int32_t y = first; y < end; ++y) std::fill_n(image.Row(y), image.width(), kWhite);
}

void PixelsFromBgr(const std::byte* samples, std::int32_t count, std::uint32_t* pixels) {
    PixelsFrom24<false>(samples, count, pixels);
}

void PixelsFromRgb(const std::byte* samples, std::int32_t count, std::uint32_t* pixels) {
    PixelsFrom24<true>(samples, count, pixels);
}

void PixelsFromIndices(const std::byte* packed, unsigned bits, const Palette& palette, std::int32_t count,
                       std::uint32_t* pixels) {
    if (bits == 8) {
        for (std::int32_t x = 0; x < count; ++x) pixels[x] = palette[std::to_integer<std::size_t>(packed[x])];
        return;
    }
    const unsigned mask = (1U << bits) - 1;
    unsigned shift = 8;
    for (std::int32_t x = 0; x < count; ++x) {
        shift -= bits;
        pixels[x] = palette[std::to_integer<unsigned>(*packed) >> shift & mask];
        if (shift == 0) {
            shift = 8;
            ++packed;
        }
    }
}

bool IsGrey(const Palette& palette, std::size_t count) {
    return std::all_of(
        palette.begin(), palette.begin() + static_cast<std::ptrdiff_t>(count),
        [](std::uint32_t pixel) { return Red(pixel) == Green(pixel) && Green(pixel) == Blue(pixel); });
}

} // namespace qt
