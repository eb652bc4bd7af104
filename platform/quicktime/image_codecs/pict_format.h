// The layout of QuickDraw pictures: header, and the sizes of what their drawing operations carry.
#pragma once

#include "platform/quicktime/image_codecs/codec.h"

#include <span>

namespace qt {

/// Reads big-endian values front to back. Beyond the end everything is 0 and `Failed` tells.
class PictCursor {
public:
    explicit PictCursor(std::span<const std::byte> bytes) : bytes_(bytes) {}

    /// The next `count` bytes; all that are left, and failure, when there are fewer.
    std::span<const std::byte> Take(std::size_t count);
    void Skip(std::size_t count) { Take(count); }
    std::uint32_t Byte();
    std::uint32_t Word();
    std::uint32_t Long();
    std::int16_t Short() { return static_cast<std::int16_t>(Word()); }
    std::int8_t SignedByte() { return static_cast<std::int8_t>(Byte()); }
    Rect ReadRect();
    /// The rest of a block that begins with its own size as a word: regions, polygons.
    PictCursor ReadBlock();
    /// Steps to an even place, counted from the beginning.
    void Align() { Skip(at_ % 2); }

    [[nodiscard]] std::size_t At() const { return at_; }
    [[nodiscard]] std::size_t Remaining() const { return bytes_.size() - at_; }
    [[nodiscard]] bool Failed() const { return failed_; }

private:
    std::span<const std::byte> bytes_;
    std::size_t at_ = 0;
    bool failed_ = false;
};

struct PictHeader {
    std::size_t picture_at = 0;    ///< 512 in a picture file, 0 without the file's header
    std::size_t operations_at = 0; ///< from the picture on: behind the version and the header operation
    bool wide = false;             ///< version 2: operations are words at even places
    Rect frame;                    ///< the coordinates that the operations draw within
    Fixed horizontal_resolution = 72 << 16;
    Fixed vertical_resolution = 72 << 16;
};

inline constexpr std::size_t kPictFileHeader = 512;
inline constexpr std::size_t kPictHead = 640; ///< bytes from which any header can be read

/// Reads the header of a picture with or without the file's header in front. False when there is none.
bool ReadPictHeader(std::span<const std::byte> head, PictHeader& header);

enum PictOperation : std::uint32_t {
    kClip = 0x01,
    kBackPattern = 0x02,
    kTextMode = 0x05,
    kPenSize = 0x07,
    kPenMode = 0x08,
    kPenPattern = 0x09,
    kFillPattern = 0x0A,
    kOvalSize = 0x0B,
    kOrigin = 0x0C,
    kTextSize = 0x0D,
    kForeColour = 0x0E,
    kBackColour = 0x0F,
    kBackPixelPattern = 0x12,
    kPenPixelPattern = 0x13,
    kFillPixelPattern = 0x14,
    kRgbForeColour = 0x1A,
    kRgbBackColour = 0x1B,
    kLine = 0x20,
    kLineFrom = 0x21,
    kShortLine = 0x22,
    kShortLineFrom = 0x23,
    kLongText = 0x28,
    kTextRight = 0x29,
    kTextDown = 0x2A,
    kTextRightDown = 0x2B,
    kShapes = 0x30,    ///< rectangles; from here 16 numbers a shape, the verb in the low three bits
    kShapesEnd = 0x90, ///< behind regions
    kBitsRect = 0x90,
    kBitsRegion = 0x91,
    kPackBitsRect = 0x98,
    kPackBitsRegion = 0x99,
    kDirectBitsRect = 0x9A,
    kDirectBitsRegion = 0x9B,
    kEndOfPicture = 0xFF,
    kHeaderOperation = 0x0C00,
    kCompressedQuickTime = 0x8200,
    kUncompressedQuickTime = 0x8201,
};

std::uint32_t ReadOperation(PictCursor& cursor, const PictHeader& header);
/// Steps over the data of an operation other than pixels and pixel patterns, which tell no size.
void SkipOperation(PictCursor& cursor, std::uint32_t operation);
constexpr bool IsBitsOperation(std::uint32_t operation) {
    return operation == kBitsRect || operation == kBitsRegion ||
           (operation >= kPackBitsRect && operation <= kDirectBitsRegion);
}

} // namespace qt
