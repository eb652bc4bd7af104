#include "platform/quicktime/image_codecs/pict_pixels.h"

#include "platform/quicktime/image_codecs/packbits.h"

#include <algorithm>

namespace qt {
namespace {

constexpr std::size_t kShortRow = 8;      ///< bytes below which rows are never packed
constexpr std::size_t kByteCounted = 250; ///< bytes of the longest row whose packed size is one byte
constexpr std::uint32_t kPixelMapFlag = 0x8000;

bool IsDrawable(PixelMap& map) {
    switch (map.pixel_size) {
    case 1:
    case 2:
    case 4:
    case 8:
    case 16: break;
    case 32:
        if (map.components != 4) map.components = 3;
        break;
    default: return false;
    }
    if (map.Width() <= 0 || map.Height() <= 0) return false;
    return static_cast<std::size_t>(map.Width()) * map.pixel_size <= map.row_bytes * 8;
}

void ReadPixelMapFields(PictCursor& cursor, PixelMap& map) {
    map.is_bitmap = false;
    cursor.Skip(2); // version
    map.pack_type = cursor.Word();
    cursor.Skip(4); // the packed size, which nobody fills in
    map.horizontal_resolution = static_cast<Fixed>(cursor.Long());
    map.vertical_resolution = static_cast<Fixed>(cursor.Long());
    cursor.Skip(2); // indices or direct, as the size of a pixel tells
    map.pixel_size = cursor.Word();
    map.components = cursor.Word();
    cursor.Skip(2 + 12); // bits of a component; planes, handles
}

void ReadRowBytesAndBounds(PictCursor& cursor, PixelMap& map, bool& is_pixel_map) {
    const std::uint32_t row_bytes = cursor.Word();
    is_pixel_map = (row_bytes & kPixelMapFlag) != 0;
    map.row_bytes = row_bytes & ~kPixelMapFlag;
    map.bounds = cursor.ReadRect();
}

/// Three or four planes of bytes as pixels: the written loops become vector code.
void PixelsFromPlanes(const std::byte* planes, std::size_t stride, bool alpha_first, std::int32_t count,
                      std::uint32_t* pixels) {
    const std::byte* red = planes + (alpha_first ? stride : 0);
    const std::byte* green = red + stride;
    const std::byte* blue = green + stride;
    const auto at = [](const std::byte* plane, std::int32_t x) {
        return std::to_integer<std::uint32_t>(plane[x]);
    };
    if (alpha_first) {
        for (std::int32_t x = 0; x < count; ++x) {
            pixels[x] = Pixel(at(red, x), at(green, x), at(blue, x), at(planes, x));
        }
    } else {
        for (std::int32_t x = 0; x < count; ++x) pixels[x] = Pixel(at(red, x), at(green, x), at(blue, x));
    }
}

} // namespace

void ReadColourTable(PictCursor& cursor, Palette& palette) {
    cursor.Skip(4); // seed
    const bool in_order = (cursor.Word() & 0x8000) != 0;
    const std::uint32_t count = cursor.Word() + 1;
    for (std::uint32_t i = 0; i < count && !cursor.Failed(); ++i) {
        const std::uint32_t value = cursor.Word();
        const std::uint32_t index = in_order ? i : value;
        const std::uint32_t red = EightOfSixteenBits(cursor.Word());
        const std::uint32_t green = EightOfSixteenBits(cursor.Word());
        const std::uint32_t blue = EightOfSixteenBits(cursor.Word());
        if (index < palette.size()) palette[index] = Pixel(red, green, blue);
    }
}

bool ReadPixelMap(PictCursor& cursor, std::uint32_t operation, PixelMap& map) {
    const bool is_direct = operation == kDirectBitsRect || operation == kDirectBitsRegion;
    if (is_direct) cursor.Skip(4); // an address
    bool is_pixel_map = false;
    ReadRowBytesAndBounds(cursor, map, is_pixel_map);
    map.palette.fill(kBlack);
    map.palette[0] = kWhite;
    if (is_pixel_map || is_direct) {
        ReadPixelMapFields(cursor, map);
        if (!is_direct) ReadColourTable(cursor, map.palette);
    }
    return !cursor.Failed() && IsDrawable(map);
}

bool ReadPatternMap(PictCursor& cursor, PixelMap& map) {
    bool is_pixel_map = false;
    ReadRowBytesAndBounds(cursor, map, is_pixel_map);
    map.palette.fill(kBlack);
    ReadPixelMapFields(cursor, map);
    ReadColourTable(cursor, map.palette);
    return !cursor.Failed() && IsDrawable(map);
}

PixelRows::PixelRows(const PixelMap& map, bool packed, PictCursor& cursor)
    : map_(map), cursor_(cursor), word_counts_(map.row_bytes > kByteCounted), row_(map.row_bytes) {
    if (!packed || map.row_bytes < kShortRow || map.pack_type == 1) {
        packing_ = Packing::kNone;
    } else if (map.pixel_size == 16) {
        packing_ = Packing::kWords;
    } else if (map.pixel_size == 32) {
        packing_ = map.pack_type == 2 ? Packing::kDropped : Packing::kPlanes;
    }
    const bool is_packed = packing_ != Packing::kNone && packing_ != Packing::kDropped;
    if (is_packed && !CountsAre(word_counts_) && CountsAre(!word_counts_)) word_counts_ = !word_counts_;
}

/// Whether the first row's count fits its data. Some programs take the wrong size of counts for rows of about
/// 200 to 340 bytes.
bool PixelRows::CountsAre(bool words) {
    PictCursor ahead = cursor_;
    const auto stored = ahead.Take(words ? ahead.Word() : ahead.Byte());
    if (ahead.Failed()) return false;
    const bool has_words = packing_ == Packing::kWords;
    const Unpacked first = has_words ? UnpackWords(stored, row_) : UnpackBits(stored, row_);
    const std::size_t width = static_cast<std::size_t>(map_.Width()) * map_.pixel_size / 8;
    const std::size_t least = packing_ == Packing::kPlanes ? width / 4 * map_.components : width;
    return first.read == stored.size() && first.written >= least;
}

std::span<const std::byte> PixelRows::TakeRow() {
    if (packing_ == Packing::kNone) return cursor_.Take(map_.row_bytes);
    if (packing_ == Packing::kDropped) return cursor_.Take(map_.row_bytes / 4 * 3);
    const std::size_t size = word_counts_ ? cursor_.Word() : cursor_.Byte();
    return cursor_.Take(size);
}

bool PixelRows::Skip() {
    return !TakeRow().empty();
}

bool PixelRows::Next(std::uint32_t* pixels) {
    const std::span<const std::byte> stored = TakeRow();
    if (stored.empty()) return false;
    std::size_t size = 0;
    switch (packing_) {
    case Packing::kNone:
    case Packing::kDropped:
        size = stored.size();
        std::ranges::copy(stored, row_.begin());
        break;
    case Packing::kWords: size = UnpackWords(stored, row_).written; break;
    case Packing::kBytes:
    case Packing::kPlanes: size = UnpackBits(stored, row_).written; break;
    }
    std::fill(row_.begin() + static_cast<std::ptrdiff_t>(size), row_.end(), std::byte{});
    Convert(row_.data(), size, pixels);
    return true;
}

void PixelRows::Convert(const std::byte* row, std::size_t size, std::uint32_t* pixels) const {
    const std::int32_t count = map_.Width();
    if (map_.pixel_size <= 8) {
        PixelsFromIndices(row, map_.pixel_size, map_.palette, count, pixels);
    } else if (map_.pixel_size == 16) {
        for (std::int32_t x = 0; x < count; ++x)
            pixels[x] = PixelFrom555(BigEndian16(row + std::ptrdiff_t{2} * x));
    } else if (packing_ == Packing::kPlanes) {
        // Planes are as long as rows are, or only as wide as the picture.
        const auto width = static_cast<std::size_t>(count);
        const std::size_t stride = std::max(width, size / map_.components);
        const bool fits = stride * map_.components <= row_.size();
        PixelsFromPlanes(row, fits ? stride : width, map_.HasAlpha(), count, pixels);
    } else if (packing_ == Packing::kDropped) {
        PixelsFromRgb(row, count, pixels);
    } else {
        const std::uint32_t opaque = map_.HasAlpha() ? 0 : 0xFF00'0000;
        for (std::int32_t x = 0; x < count; ++x)
            pixels[x] = BigEndian32(row + std::ptrdiff_t{4} * x) | opaque;
    }
}

} // namespace qt
