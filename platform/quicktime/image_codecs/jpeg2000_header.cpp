#include "platform/quicktime/image_codecs/jpeg2000_header.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <utility>

namespace qt {
namespace {

constexpr std::array<unsigned char, 12> kSignatureBox = {0,   0,   0,    12,   'j',  'P',
                                                         ' ', ' ', '\r', '\n', 0x87, '\n'};
constexpr std::uint32_t kStartAndSize = 0xFF4F'FF51; ///< the two markers with which a codestream begins
constexpr std::uint32_t kMostComponents = 64;
constexpr std::uint64_t kMostTileComponents = 65'535; ///< the codec keeps about 1 KB for each
constexpr double kAlwaysPrecincts = 65'535;           ///< about 600 bytes for each
constexpr double kSamplesOfPrecinct = 256;            ///< at least, on average, in what has more of them

enum Marker : std::uint32_t {
    kCodingStyle = 0xFF52,
    kComponentStyle = 0xFF53,
    kStartOfTile = 0xFF90,
    kStartOfData = 0xFF93
};

std::uint64_t DividedUp(std::uint64_t value, std::uint64_t by) {
    return (value + by - 1) / by;
}

template <std::size_t kCount>
bool ReadAt(DataSource& source, std::uint64_t offset, std::array<std::byte, kCount>& bytes) {
    return source.Read(offset, bytes) == kCount;
}

/// The marker segment of the size, `at` behind its length.
bool ReadSize(DataSource& source, std::uint64_t at, Jpeg2000Header& header) {
    std::array<std::byte, 36> bytes;
    if (!ReadAt(source, at, bytes)) return false;
    const auto field = [&](std::size_t offset) { return BigEndian32(&bytes[offset]); };
    const std::uint32_t right = field(2);
    const std::uint32_t bottom = field(6);
    const std::uint32_t left = field(10);
    const std::uint32_t top = field(14);
    const std::uint32_t tile_width = field(18);
    const std::uint32_t tile_height = field(22);
    const std::uint32_t tile_left = field(26);
    const std::uint32_t tile_top = field(30);
    header.components = BigEndian16(&bytes[34]);
    if (right <= left || bottom <= top || tile_width == 0 || tile_height == 0 || tile_left > left ||
        tile_top > top || header.components == 0 || header.components > kMostComponents)
        return false;
    header.width = right - left;
    header.height = bottom - top;
    header.tiles = DividedUp(right - tile_left, tile_width) * DividedUp(bottom - tile_top, tile_height);
    for (std::uint32_t component = 0; component < header.components; ++component) {
        std::array<std::byte, 3> sampling;
        if (!ReadAt(source, at + bytes.size() + std::uint64_t{3} * component, sampling)) return false;
        const auto across = std::to_integer<std::uint32_t>(sampling[1]);
        const auto down = std::to_integer<std::uint32_t>(sampling[2]);
        if (across == 0 || down == 0) return false;
        header.samples += DividedUp(header.width, across) * DividedUp(header.height, down);
    }
    return header.tiles * header.components <= kMostTileComponents && header.tiles <= source.GetSize();
}

/// The precincts that a coding style, whose marker is at `at`, would make of all components; other segments
/// tell nothing of them.
void TakePrecincts(DataSource& source, std::uint64_t at, std::uint32_t marker, Jpeg2000Header& header) {
    constexpr std::uint32_t kMostLevels = 32;
    if (marker != kCodingStyle && marker != kComponentStyle) return;
    const std::uint64_t style = marker == kCodingStyle ? 4 : 5; // behind the component's number
    const std::uint64_t levels_at = style + (marker == kCodingStyle ? 5 : 1);
    std::array<std::byte, 1> flags;
    std::array<std::byte, 1> levels;
    if (!ReadAt(source, at + style, flags) || (flags[0] & std::byte{1}) == std::byte{} ||
        !ReadAt(source, at + levels_at, levels))
        return;
    double precincts = 0;
    const std::uint32_t most = std::min(std::to_integer<std::uint32_t>(levels[0]), kMostLevels);
    for (std::uint32_t resolution = 0; resolution <= most; ++resolution) {
        std::array<std::byte, 1> exponents;
        if (!ReadAt(source, at + levels_at + 5 + resolution, exponents)) return;
        const auto exponent = std::to_integer<std::uint32_t>(exponents[0]);
        const std::uint32_t smaller = most - resolution;
        const auto along = [&](std::uint32_t length, std::uint32_t power) {
            return static_cast<double>(DividedUp(length, std::uint64_t{1} << (smaller + power)));
        };
        precincts += along(header.width, exponent & 15) * along(header.height, exponent >> 4);
    }
    header.precincts = std::max(header.precincts, precincts * header.components);
}

/// The coding styles in the header of a tile part; `at` behind its first segment.
void ReadTileHeader(DataSource& source, std::uint64_t at, Jpeg2000Header& header) {
    std::array<std::byte, 4> segment;
    while (ReadAt(source, at, segment)) {
        const std::uint32_t marker = BigEndian16(segment.data());
        const std::uint32_t length = BigEndian16(&segment[2]);
        if (marker < 0xFF00 || marker == kStartOfData || length < 2) return;
        TakePrecincts(source, at, marker, header);
        at += 2 + length;
    }
}

/// Walks the tile parts from the first on, as far as each begins where the one before it ends.
void WalkTileParts(DataSource& source, std::uint64_t at, Jpeg2000Header& header) {
    std::array<std::byte, 10> part;
    while (ReadAt(source, at, part) && BigEndian16(part.data()) == kStartOfTile) {
        ReadTileHeader(source, at + 12, header);
        const std::uint32_t length = BigEndian32(&part[6]);
        if (length == 0) return; // up to the end of the data
        if (length > source.GetSize() - at) {
            header.cut_length_at = at + 6;
            return;
        }
        at += std::max<std::uint32_t>(length, part.size());
    }
}

/// The main header from its first marker on.
bool ReadCodestream(DataSource& source, std::uint64_t at, Jpeg2000Header& header) {
    std::array<std::byte, 4> start;
    if (!ReadAt(source, at, start) || BigEndian32(start.data()) != kStartAndSize) return false;
    at += 2;
    bool has_size = false;
    std::array<std::byte, 14> segment;
    while (ReadAt(source, at, segment)) {
        const std::uint32_t marker = BigEndian16(segment.data());
        const std::uint32_t length = BigEndian16(&segment[2]);
        if (marker == kStartOfTile) {
            WalkTileParts(source, at, header);
            return has_size && header.precincts <= kAlwaysPrecincts + static_cast<double>(header.samples) /
                                                                          kSamplesOfPrecinct;
        }
        if (marker < 0xFF00 || length < 2) return false;
        if (!has_size) {
            has_size = ReadSize(source, at + 4, header);
            if (!has_size) return false;
        }
        TakePrecincts(source, at, marker, header);
        if (marker == kCodingStyle) header.is_reversible = segment[13] == std::byte{1};
        at += 2 + length;
    }
    return false;
}

struct Box {
    OSType type = 0;
    std::uint64_t at = 0; ///< of its contents
    std::uint64_t end = 0;
};

/// The box at `at` within what ends at `end`.
bool ReadBox(DataSource& source, std::uint64_t at, std::uint64_t end, Box& box) {
    std::array<std::byte, 16> bytes{};
    const std::size_t count = source.Read(at, bytes);
    if (count < 8 || at + 8 > end) return false;
    std::uint64_t length = BigEndian32(bytes.data());
    std::uint64_t header = 8;
    box.type = BigEndian32(&bytes[4]);
    if (length == 1) {
        header = 16;
        length = std::uint64_t{BigEndian32(&bytes[8])} << 32 | BigEndian32(&bytes[12]);
    } else if (length == 0) {
        length = end - at;
    }
    if (length < header) return false;
    box.at = at + header;
    box.end = at + std::min(length, end - at);
    return true;
}

template <class OnBox>
void WalkBoxes(DataSource& source, std::uint64_t at, std::uint64_t end, OnBox on_box) {
    constexpr int kMostBoxes = 1000;
    Box box;
    for (int i = 0; i < kMostBoxes && at < end && ReadBox(source, at, end, box); ++i) {
        on_box(box);
        at = box.end;
    }
}

/// Pixels per metre as a fraction times a power of ten; down first, then across.
void TakeResolution(DataSource& source, const Box& box, Jpeg2000Header& header) {
    constexpr double kMetresPerInch = 0.0254;
    std::array<std::byte, 10> bytes;
    if (!ReadAt(source, box.at, bytes)) return;
    const auto dots = [&](std::size_t at, std::size_t exponent_at) {
        const std::uint32_t divisor = BigEndian16(&bytes[at + 2]);
        if (divisor == 0) return 0.0;
        const auto exponent = static_cast<std::int8_t>(bytes[exponent_at]);
        return BigEndian16(&bytes[at]) * std::pow(10.0, int{exponent}) / divisor * kMetresPerInch;
    };
    header.vertical_dpi = dots(0, 8);
    header.horizontal_dpi = dots(4, 9);
}

/// Whether a channel definition box names an opacity channel.
bool DefinesAlpha(DataSource& source, const Box& box) {
    std::array<std::byte, 2> count;
    if (!ReadAt(source, box.at, count)) return false;
    const std::uint32_t channels = std::min(BigEndian16(count.data()), kMostComponents);
    for (std::uint32_t i = 0; i < channels; ++i) {
        std::array<std::byte, 2> kind;
        if (!ReadAt(source, box.at + 2 + std::uint64_t{6} * i + 2, kind)) return false;
        if (BigEndian16(kind.data()) == 1 || BigEndian16(kind.data()) == 2) return true;
    }
    return false;
}

void ReadHeaderBoxes(DataSource& source, const Box& boxes, Jpeg2000Header& header) {
    WalkBoxes(source, boxes.at, boxes.end, [&](const Box& box) {
        if (box.type == Code("pclr")) header.has_palette = true;
        if (box.type == Code("cdef")) header.has_alpha = DefinesAlpha(source, box);
        if (box.type != Code("res ")) return;
        WalkBoxes(source, box.at, box.end, [&](const Box& resolution) {
            const bool is_capture = resolution.type == Code("resc");
            const bool is_display = resolution.type == Code("resd") && header.horizontal_dpi == 0.0;
            if (is_capture || is_display) TakeResolution(source, resolution, header);
        });
    });
}

/// Blocks of other formats stand in boxes that begin with a UUID.
void TakeBlock(DataSource& source, const Box& box, Jpeg2000Header& header) {
    using Uuid = std::array<unsigned char, 16>;
    constexpr Uuid kXmp = {0xBE, 0x7A, 0xCF, 0xCB, 0x97, 0xA9, 0x42, 0xE8,
                           0x9C, 0x71, 0x99, 0x94, 0x91, 0xE3, 0xAF, 0xAC};
    constexpr Uuid kIptc = {0x33, 0xC7, 0xA4, 0xD2, 0xB8, 0x1D, 0x47, 0x23,
                            0xA0, 0xBA, 0xF1, 0xA3, 0xE0, 0x97, 0xAD, 0x38};
    std::array<std::byte, 16> bytes;
    if (box.end - box.at < bytes.size() || !ReadAt(source, box.at, bytes)) return;
    const auto uuid = std::bit_cast<Uuid>(bytes);
    const Jpeg2000Part part = {box.at + bytes.size(), box.end - box.at - bytes.size()};
    if (uuid == kXmp) header.xmp = part;
    if (uuid == kIptc) header.iptc = part;
}

} // namespace

bool SniffJpeg2000(std::span<const std::byte> head) {
    if (head.size() < kSignatureBox.size()) return false;
    return std::memcmp(head.data(), kSignatureBox.data(), kSignatureBox.size()) == 0 ||
           BigEndian32(head.data()) == kStartAndSize;
}

ComponentResult ReadJpeg2000Header(DataSource& source, Jpeg2000Header& header) {
    std::array<std::byte, kSignatureBox.size()> head;
    if (!ReadAt(source, 0, head) || !SniffJpeg2000(head)) return codecBadDataErr;
    header.has_boxes = BigEndian32(head.data()) != kStartAndSize;
    bool is_good = false;
    bool is_found = false; // of several codestreams the first is the image
    if (header.has_boxes) {
        WalkBoxes(source, 0, source.GetSize(), [&](const Box& box) {
            if (box.type == Code("jp2h")) ReadHeaderBoxes(source, box, header);
            if (box.type == Code("uuid")) TakeBlock(source, box, header);
            if (box.type != Code("jp2c") || std::exchange(is_found, true)) return;
            is_good = ReadCodestream(source, box.at, header);
        });
    } else {
        is_good = ReadCodestream(source, 0, header);
        header.has_alpha = header.components % 2 == 0;
    }
    return is_good ? ComponentResult{noErr} : codecBadDataErr;
}

} // namespace qt
