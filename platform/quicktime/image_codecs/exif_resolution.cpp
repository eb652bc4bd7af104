#include "platform/quicktime/image_codecs/exif_resolution.h"

#include <cstdint>

namespace qt {
namespace {

constexpr std::uint32_t kXResolution = 0x011A;
constexpr std::uint32_t kYResolution = 0x011B;
constexpr std::uint32_t kResolutionUnit = 0x0128;
constexpr std::uint32_t kNoUnit = 1;
constexpr std::uint32_t kCentimetre = 3;
constexpr std::size_t kEntrySize = 12;

/// Integers of the block in its byte order; 0 outside of it.
class Block {
public:
    Block(std::span<const std::byte> bytes, bool big_endian) : bytes_(bytes), big_endian_(big_endian) {}

    [[nodiscard]] std::uint32_t At16(std::size_t offset) const { return Integer(offset, 2); }
    [[nodiscard]] std::uint32_t At32(std::size_t offset) const { return Integer(offset, 4); }

    [[nodiscard]] double RationalAt(std::size_t offset) const {
        const std::uint32_t denominator = At32(offset + 4);
        return denominator == 0 ? 0.0 : static_cast<double>(At32(offset)) / denominator;
    }

private:
    [[nodiscard]] std::uint32_t Integer(std::size_t offset, std::size_t size) const {
        if (offset > bytes_.size() || size > bytes_.size() - offset) return 0;
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < size; ++i) {
            const std::size_t at = offset + (big_endian_ ? i : size - 1 - i);
            value = value << 8 | std::to_integer<std::uint32_t>(bytes_[at]);
        }
        return value;
    }

    std::span<const std::byte> bytes_;
    bool big_endian_;
};

// Of a unit to dots per inch; 0 where there is none, and the numbers are a ratio.
double ScaleOf(std::uint32_t unit) {
    return unit == kNoUnit ? 0.0 : unit == kCentimetre ? 2.54 : 1.0;
}

} // namespace

Resolution ExifResolution(std::span<const std::byte> bytes) {
    if (bytes.size() < 8) return {};
    const Block block(bytes, bytes[0] == std::byte{'M'});
    if (block.At16(2) != 42) return {};
    const std::size_t directory = block.At32(4);
    const std::size_t count = block.At16(directory);
    Resolution resolution{};
    double scale = 1.0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t entry = directory + 2 + i * kEntrySize;
        switch (block.At16(entry)) {
        case kXResolution: resolution.horizontal = block.RationalAt(block.At32(entry + 8)); break;
        case kYResolution: resolution.vertical = block.RationalAt(block.At32(entry + 8)); break;
        case kResolutionUnit: scale = ScaleOf(block.At16(entry + 8)); break;
        default: break;
        }
    }
    return {resolution.horizontal * scale, resolution.vertical * scale};
}

} // namespace qt
