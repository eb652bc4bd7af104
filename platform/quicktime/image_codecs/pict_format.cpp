#include "platform/quicktime/image_codecs/pict_format.h"

#include <algorithm>

namespace qt {
namespace {

constexpr std::size_t kSizeAndFrame = 10;
constexpr std::size_t kHeaderData = 24; ///< bytes of a header operation's data
constexpr std::uint32_t kExtended = 0xFFFE;

bool HoldsPixels(const Rect& rect) {
    return rect.left < rect.right && rect.top < rect.bottom;
}

bool WithinLimits(const Rect& rect) {
    const auto limit = static_cast<int>(kMaximumDimension);
    return HoldsPixels(rect) && rect.right - rect.left <= limit && rect.bottom - rect.top <= limit;
}

bool IsWideAt(std::span<const std::byte> head, std::size_t at) {
    at += kSizeAndFrame;
    return head.size() >= at + 4 && BigEndian32(&head[at]) == 0x0011'02FF;
}

bool IsNarrowAt(std::span<const std::byte> head, std::size_t at) {
    if (head.size() < at + kSizeAndFrame + 2 || BigEndian16(&head[at + kSizeAndFrame]) != 0x1101)
        return false;
    PictCursor cursor(head.subspan(at + 2));
    return HoldsPixels(cursor.ReadRect());
}

void Place(std::size_t picture_at, bool wide, PictHeader& header) {
    header = {};
    header.picture_at = picture_at;
    header.wide = wide;
}

/// The extended header's rectangle is in dots of the picture's own resolution, as are its operations; the
/// frame in front of it may be in 72 to the inch.
void TakeHeaderOperation(PictCursor& cursor, PictHeader& header) {
    PictCursor data(cursor.Take(kHeaderData));
    if (data.Word() != kExtended) return;
    data.Skip(2);
    const auto horizontal = static_cast<Fixed>(data.Long());
    const auto vertical = static_cast<Fixed>(data.Long());
    const Rect source = data.ReadRect();
    if (data.Failed()) return;
    if (horizontal > 0) header.horizontal_resolution = horizontal;
    if (vertical > 0) header.vertical_resolution = vertical;
    if (WithinLimits(source)) header.frame = source;
}

/// Bytes of data of the operations below 0x30 whose data has one size; kPrefixed for a word that tells it.
constexpr int kPrefixed = -1;
constexpr std::array<int, 0x30> kSizes = {
    0, 0, 8, 2, 1,         2,         4,         4,         // 00: the clip is below
    2, 8, 8, 4, 4,         2,         4,         4,         // 08
    8, 1, 0, 0, 0,         2,         2,         0,         // 10: pixel patterns are drawing's
    0, 0, 6, 6, 0,         6,         0,         6,         // 18
    8, 4, 6, 2, kPrefixed, kPrefixed, kPrefixed, kPrefixed, // 20
    0, 0, 0, 0, kPrefixed, kPrefixed, kPrefixed, kPrefixed, // 28: texts below
};

void SkipText(PictCursor& cursor, std::uint32_t operation) {
    cursor.Skip(operation == kLongText ? 4 : operation == kTextRightDown ? 2 : 1);
    cursor.Skip(cursor.Byte());
}

void SkipShape(PictCursor& cursor, std::uint32_t operation) {
    const bool same = (operation & 8) != 0;
    switch (operation & 0xF0) {
    case 0x60: cursor.Skip(same ? 4 : 12); break;
    case 0x70:
    case 0x80:
        if (!same) cursor.ReadBlock();
        break;
    default: cursor.Skip(same ? 0 : 8);
    }
}

void SkipByte(PictCursor& cursor, std::uint32_t operation) {
    if (operation == kClip) {
        cursor.ReadBlock();
    } else if (operation >= kLongText && operation <= kTextRightDown) {
        SkipText(cursor, operation);
    } else if (operation < kShapes) {
        const int size = kSizes[operation];
        cursor.Skip(size == kPrefixed ? cursor.Word() : static_cast<std::size_t>(std::max(size, 0)));
    } else if (operation < kShapesEnd) {
        SkipShape(cursor, operation);
    } else if (operation == 0xA0) { // a short comment's kind
        cursor.Skip(2);
    } else if (operation < 0xB0) {
        if (operation == 0xA1) cursor.Skip(2); // a long comment's kind
        cursor.Skip(cursor.Word());
    } else if (operation >= 0xD0) {
        cursor.Skip(cursor.Long());
    }
}

} // namespace

std::span<const std::byte> PictCursor::Take(std::size_t count) {
    if (count > Remaining()) {
        failed_ = true;
        count = Remaining();
    }
    const auto taken = bytes_.subspan(at_, count);
    at_ += count;
    return taken;
}

std::uint32_t PictCursor::Byte() {
    const auto bytes = Take(1);
    return bytes.empty() ? 0 : std::to_integer<std::uint32_t>(bytes[0]);
}

std::uint32_t PictCursor::Word() {
    const auto bytes = Take(2);
    return bytes.size() < 2 ? 0 : BigEndian16(bytes.data());
}

std::uint32_t PictCursor::Long() {
    const auto bytes = Take(4);
    return bytes.size() < 4 ? 0 : BigEndian32(bytes.data());
}

Rect PictCursor::ReadRect() {
    Rect rect;
    rect.top = Short();
    rect.left = Short();
    rect.bottom = Short();
    rect.right = Short();
    return rect;
}

PictCursor PictCursor::ReadBlock() {
    const std::uint32_t size = Word();
    return PictCursor(Take(std::max<std::uint32_t>(size, 2) - 2));
}

bool ReadPictHeader(std::span<const std::byte> head, PictHeader& header) {
    // The space in front may repeat the picture's beginning, so behind it is the place to look at first.
    if (IsWideAt(head, kPictFileHeader)) {
        Place(kPictFileHeader, true, header);
    } else if (IsWideAt(head, 0)) {
        Place(0, true, header);
    } else if (IsNarrowAt(head, kPictFileHeader)) {
        Place(kPictFileHeader, false, header);
    } else if (IsNarrowAt(head, 0)) {
        Place(0, false, header);
    } else {
        return false;
    }
    PictCursor cursor(head.subspan(header.picture_at));
    cursor.Skip(2); // the picture's size, its low 16 bits only
    header.frame = cursor.ReadRect();
    cursor.Skip(header.wide ? 4 : 2);
    PictCursor behind = cursor;
    if (header.wide && behind.Word() == kHeaderOperation) {
        TakeHeaderOperation(behind, header);
        cursor = behind;
    }
    header.operations_at = cursor.At();
    return true;
}

std::uint32_t ReadOperation(PictCursor& cursor, const PictHeader& header) {
    if (!header.wide) return cursor.Byte();
    cursor.Align();
    return cursor.Word();
}

void SkipOperation(PictCursor& cursor, std::uint32_t operation) {
    if (operation < 0x100) {
        SkipByte(cursor, operation);
    } else if (operation < 0x8000) {
        cursor.Skip(std::size_t{operation >> 8} * 2);
    } else if (operation >= 0x8100) {
        cursor.Skip(cursor.Long());
    }
}

} // namespace qt
