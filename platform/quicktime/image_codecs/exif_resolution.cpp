#include "platform/quicktime/image_codecs/exif_resolution.h"

#include <cstdint>

namespace qt {
namespace {

constexpr std::uint32_t kXResolution = 0x011A;
constexpr std::uint32_t kYResolution = 0x011B;
constexpr std::uint32_t kResolutionUnit = 0x0128;
constexpr std::uint32_t kShortType = 3;
constexpr std::uint32_t kRationalType = 5;
constexpr std::size_t kRationalSize = 8;
constexpr std::uint32_t kNoUnit = 1;
constexpr std::uint32_t kInch = 2;
constexpr std::uint32_t kCentimetre = 3;
constexpr std::size_t kEntrySize = 12;

/// Integers of the block in its byte order; 0 outside of it.
class Block {
public:
    explicit Block(std::span<const std::byte> bytes)
        : bytes_(bytes), big_endian_(!bytes.empty() && bytes[0] == std::byte{'M'}) {}

    [[nodiscard]] std::uint32_t At16(std::size_t offset) const { return Integer(offset, 2); }
    [[nodiscard]] std::uint32_t At32(std::size_t offset) const { return Integer(offset, 4); }

    [[nodiscard]] double RationalAt(std::size_t offset) const {
        const std::uint32_t denominator = At32(offset + 4);
        return denominator == 0 ? 0.0 : static_cast<double>(At32(offset)) / denominator;
    }

    [[nodiscard]] bool Holds(std::size_t offset, std::size_t size) const {
        return offset <= bytes_.size() && size <= bytes_.size() - offset;
    }
    /// Where the byte of that rank, 0 the lowest, of an integer stands.
    [[nodiscard]] std::size_t PlaceOf(std::size_t rank, std::size_t offset, std::size_t size) const {
        return offset + (big_endian_ ? size - 1 - rank : rank);
    }

private:
    [[nodiscard]] std::uint32_t Integer(std::size_t offset, std::size_t size) const {
        if (!Holds(offset, size)) return 0;
        std::uint32_t value = 0;
        for (std::size_t rank = size; rank-- > 0;)
            value = value << 8 | std::to_integer<std::uint32_t>(bytes_[PlaceOf(rank, offset, size)]);
        return value;
    }

    std::span<const std::byte> bytes_;
    bool big_endian_;
};

/// Where the values stand in the block; 0 for those that are absent.
struct Places {
    std::size_t horizontal = 0;
    std::size_t vertical = 0;
    std::size_t unit = 0;
};

Places FindPlaces(const Block& block) {
    Places places;
    if (block.At16(2) != 42) return places;
    const std::size_t directory = block.At32(4);
    const std::size_t count = block.At16(directory);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t entry = directory + 2 + i * kEntrySize;
        if (!block.Holds(entry, kEntrySize)) break;
        const std::uint32_t type = block.At16(entry + 2);
        const std::size_t rational = type == kRationalType ? block.At32(entry + 8) : 0;
        switch (block.At16(entry)) {
        case kXResolution: places.horizontal = rational; break;
        case kYResolution: places.vertical = rational; break;
        case kResolutionUnit: places.unit = type == kShortType ? entry + 8 : 0; break;
        default: break;
        }
    }
    return places;
}

// Of a unit to dots per inch; 0 where there is none, and the numbers are a ratio.
double ScaleOf(std::uint32_t unit) {
    return unit == kNoUnit ? 0.0 : unit == kCentimetre ? 2.54 : 1.0;
}

} // namespace

Resolution ExifResolution(std::span<const std::byte> bytes) {
    const Block block(bytes);
    const Places places = FindPlaces(block);
    const double scale = places.unit != 0 ? ScaleOf(block.At16(places.unit)) : 1.0;
    const auto value = [&](std::size_t place) { return place != 0 ? block.RationalAt(place) * scale : 0.0; };
    return {value(places.horizontal), value(places.vertical)};
}

void SetExifResolution(std::span<std::byte> block, std::uint32_t horizontal, std::uint32_t vertical) {
    const Block read(block);
    const Places places = FindPlaces(read);
    const auto set = [&](std::size_t offset, std::size_t size, std::uint32_t value) {
        for (std::size_t rank = 0; rank < size; ++rank)
            block[read.PlaceOf(rank, offset, size)] = static_cast<std::byte>(value >> 8 * rank);
    };
    const auto set_rational = [&](std::size_t place, std::uint32_t value) {
        if (place == 0 || !read.Holds(place, kRationalSize)) return;
        set(place, 4, value);
        set(place + 4, 4, 1);
    };
    set_rational(places.horizontal, horizontal);
    set_rational(places.vertical, vertical);
    if (places.unit != 0) set(places.unit, 2, kInch);
}

} // namespace qt
