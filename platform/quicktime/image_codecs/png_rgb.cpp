#include "platform/quicktime/image_codecs/png_rgb.h"

#include "platform/quicktime/image_codecs/raster.h"

#include <libdeflate.h>
#include <memory>
#include <new>

namespace qt {
namespace {

constexpr std::size_t kPixelBytes = 3;
constexpr std::size_t kMargin = 16; ///< around rows, so that pixels move as whole words
constexpr std::int32_t kLeastWidth = 64;

/// The contents of the data chunks, one behind the other; empty when they break off or have more bytes than
/// `most`.
std::vector<std::byte> ReadChunks(DataSource& source, std::uint64_t chunk, std::size_t most) {
    constexpr std::uint64_t kFrame = 12; // length and type in front of a chunk's data, checksum behind
    std::vector<std::byte> data;
    const std::uint64_t left = source.GetSize() - std::min(chunk, source.GetSize());
    most = static_cast<std::size_t>(std::min<std::uint64_t>(left, most));
    data.reserve(most);
    std::array<std::byte, 8> header;
    while (source.Read(chunk, header) == header.size() && BigEndian32(&header[4]) == Code("IDAT")) {
        const std::uint32_t size = BigEndian32(header.data());
        const std::size_t at = data.size();
        if (size > most - at) return {};
        data.resize(at + size);
        if (source.Read(chunk + header.size(), std::span(data).subspan(at)) != size) return {};
        chunk += kFrame + size;
    }
    return data;
}

/// The three bytes of a pixel as numbers that can go below zero. The fourth lane is of no account.
using Lanes = std::int16_t __attribute__((vector_size(8)));
using Bytes = std::uint8_t __attribute__((vector_size(4)));

Lanes Load(const std::byte* pixel) {
    Bytes bytes;
    std::memcpy(&bytes, pixel, sizeof bytes);
    return __builtin_convertvector(bytes, Lanes);
}

/// Writes a fourth byte too, which the next pixel overwrites. Answers what was stored: the lowest 8 bits.
Lanes Store(Lanes value, std::byte* pixel) {
    const Bytes bytes = __builtin_convertvector(value, Bytes);
    std::memcpy(pixel, &bytes, sizeof bytes);
    return value & 0xFF;
}

Lanes Magnitude(Lanes value) {
    const Lanes sign = value >> 15;
    return (value ^ sign) - sign;
}

/// Of left, above and the pixel above the left one, each lane's nearest to left + above - corner.
Lanes Paeth(Lanes left, Lanes above, Lanes corner) {
    const Lanes from_left = Magnitude(above - corner);
    const Lanes from_above = Magnitude(left - corner);
    const Lanes from_corner = Magnitude(left + above - corner - corner);
    const Lanes takes_left = (from_left <= from_above) & (from_left <= from_corner);
    const Lanes takes_above = ~takes_left & (from_above <= from_corner);
    return (left & takes_left) | (above & takes_above) | (corner & ~(takes_left | takes_above));
}

/// Restores a filtered row whose pixels are predicted by those on the left, above and above the left.
template <class Predict>
void Restore(const std::byte* filtered, const std::byte* above, std::size_t size, std::byte* row,
             Predict predict) {
    Lanes left{};
    Lanes corner{};
    for (std::size_t i = 0; i < size; i += kPixelBytes) {
        const Lanes up = Load(above + i);
        left = Store(Load(filtered + i) + predict(left, up, corner), row + i);
        corner = up;
    }
}

/// False for an unknown filter. Up to kMargin bytes behind the filtered row are read, and behind `row`
/// written.
bool Unfilter(unsigned filter, const std::byte* filtered, const std::byte* above, std::size_t size,
              std::byte* row) {
    switch (filter) {
    case 0: std::memcpy(row, filtered, size); return true;
    case 1: Restore(filtered, above, size, row, [](Lanes left, Lanes, Lanes) { return left; }); return true;
    case 2:
        for (std::size_t i = 0; i < size; ++i) {
            row[i] = static_cast<std::byte>(std::to_integer<unsigned>(filtered[i]) +
                                            std::to_integer<unsigned>(above[i]));
        }
        return true;
    case 3:
        Restore(filtered, above, size, row, [](Lanes left, Lanes up, Lanes) { return (left + up) >> 1; });
        return true;
    case 4: Restore(filtered, above, size, row, Paeth); return true;
    default: return false;
    }
}

/// Turns the inflated rows, which lie at the end of the image's own memory, into pixels from its beginning
/// on: four bytes a pixel never catch up with three.
bool MakePixels(const std::byte* inflated, PixelImage& image) {
    const auto width = static_cast<std::size_t>(image.width());
    const std::size_t size = width * kPixelBytes;
    std::vector<std::byte> rows(2 * (size + kMargin));
    std::byte* above = rows.data();
    std::byte* row = rows.data() + size + kMargin;
    for (std::int32_t y = 0; y < image.height(); ++y, inflated += size + 1) {
        if (!Unfilter(std::to_integer<unsigned>(*inflated), inflated + 1, above, size, row)) return false;
        PixelsFromRgb(row, image.width(), image.Row(y));
        std::swap(row, above);
    }
    return true;
}

struct FreeDecompressor {
    void operator()(libdeflate_decompressor* made) const { libdeflate_free_decompressor(made); }
};

bool Decode(DataSource& source, std::uint64_t first_chunk, PixelImage& image) {
    const auto height = static_cast<std::size_t>(image.height());
    const std::size_t size = (static_cast<std::size_t>(image.width()) * kPixelBytes + 1) * height;
    // Rows that do not get smaller take little more than their size. A file can hold any number of bytes
    // more, in a hole of the disk, say.
    const std::vector<std::byte> data = ReadChunks(source, first_chunk, 2 * size);
    const std::unique_ptr<libdeflate_decompressor, FreeDecompressor> inflater(
        libdeflate_alloc_decompressor());
    if (data.empty() || inflater == nullptr) return false;
    std::byte* const inflated = image.Bytes() + image.stride() * height - size - kMargin;
    // Without a place for the size, anything but exactly that many bytes is an error.
    const auto result =
        libdeflate_zlib_decompress(inflater.get(), data.data(), data.size(), inflated, size, nullptr);
    return result == LIBDEFLATE_SUCCESS && MakePixels(inflated, image);
}

} // namespace

bool DecodeWholeRgb(DataSource& source, std::uint64_t first_chunk, PixelImage& image) noexcept {
    if (image.width() < kLeastWidth) return false;
    try {
        return Decode(source, first_chunk, image);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace qt
