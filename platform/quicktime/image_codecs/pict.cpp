// QuickDraw pictures: drawing operations, most of them pixel maps, in a frame.
#include "platform/quicktime/image_codecs/pict_player.h"
#include "platform/quicktime/modules/pixman_library.h"

#include <new>

namespace qt {
namespace {

constexpr std::array<OSType, 4> kTypes = {Code("PICT"), Code("pict"), Code("QDRW"), Code("qdrw")};
constexpr std::size_t kLookedAt = 16'384; ///< bytes in which the first pixel map is looked for

bool Sniff(std::span<const std::byte> head) {
    PictHeader header;
    return ReadPictHeader(head, header);
}

/// Depth of what an operation draws; 0 for operations that draw no pixels.
std::int16_t DepthOf(PictCursor cursor, std::uint32_t operation) {
    if (IsBitsOperation(operation)) {
        PixelMap map;
        if (!ReadPixelMap(cursor, operation, map)) return 0;
        const bool is_rgb = map.pixel_size == 32 && map.components == 3;
        return static_cast<std::int16_t>(is_rgb ? 24 : map.pixel_size);
    }
    if (operation == kCompressedQuickTime) {
        constexpr std::size_t kBeforeDescription = 68;
        DescribedImage described;
        cursor.Skip(4 + kBeforeDescription);
        PictCursor size = cursor;
        const bool found = ReadImageDescription(cursor.Take(size.Long()), described);
        return found ? described.description.depth : std::int16_t{0};
    }
    return 0;
}

/// Depth of the first pixels that are drawn when they are near, else of any drawing.
std::int16_t FindDepth(std::span<const std::byte> head, const PictHeader& header) {
    constexpr std::int16_t kAnyDepth = 32;
    PictCursor cursor(head.subspan(header.picture_at));
    cursor.Skip(header.operations_at);
    while (!cursor.Failed() && cursor.Remaining() > 0) {
        const std::uint32_t operation = ReadOperation(cursor, header);
        if (const auto depth = DepthOf(cursor, operation); depth != 0) return depth;
        const bool is_pattern = operation >= kBackPixelPattern && operation <= kFillPixelPattern;
        if (operation == kEndOfPicture || IsBitsOperation(operation) || is_pattern) break;
        SkipOperation(cursor, operation);
    }
    return kAnyDepth;
}

ComponentResult Describe(const PictHeader& header, ImageDescription& description) {
    const std::int32_t width = header.frame.right - header.frame.left;
    const std::int32_t height = header.frame.bottom - header.frame.top;
    if (width <= 0 || height <= 0) return codecBadDataErr;
    description.cType = Code("qdrw");
    description.name = Name("QuickDraw Picture");
    description.spatialQuality = kLosslessQuality;
    description.hRes = FixedResolution(header.horizontal_resolution / 65'536.0);
    description.vRes = FixedResolution(header.vertical_resolution / 65'536.0);
    return SetDimensions(description, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
}

ComponentResult ReadFacts(DataSource& source, ImageFacts& facts) {
    std::array<std::byte, kLookedAt> bytes;
    const auto head = std::span(bytes).first(source.Read(0, bytes));
    PictHeader header;
    if (!ReadPictHeader(head, header)) return codecBadDataErr;
    facts.data_offset = header.picture_at;
    facts.data_size = source.GetSize() - header.picture_at;
    facts.description.depth = FindDepth(head, header);
    return Describe(header, facts.description);
}

ComponentResult DecodeWhole(DataSource& source, PixelImage& image) {
    if (!g_pixman.Load()) return codecUnimpErr;
    constexpr std::uint32_t kMostPixelsOfByte = 4096; // few operations can fill a large frame
    const std::uint64_t size = source.GetSize();
    if (size > kMaximumPixelBytes) return memFullErr;
    std::span<const std::byte> bytes = source.InMemory();
    std::vector<std::byte> owned;
    if (bytes.empty()) {
        owned.resize(static_cast<std::size_t>(size));
        bytes = std::span(owned).first(source.Read(0, owned));
    }
    PictHeader header;
    if (!ReadPictHeader(bytes, header)) return codecBadDataErr;
    ImageDescription description;
    if (const auto code = Describe(header, description); code != noErr) return code;
    if (const auto code = AllocateFor(description, source, kMostPixelsOfByte, image); code != noErr)
        return code;
    image.has_alpha = image.is_grey = false;
    Canvas canvas(image, header.frame);
    PictPlayer player(bytes.subspan(header.picture_at), header, canvas);
    if (!player.Play()) return codecBadDataErr;
    canvas.Finish();
    return noErr;
}

ComponentResult Decode(DataSource& source, std::uint32_t /*index*/, PixelImage& image) {
    try {
        return DecodeWhole(source, image);
    } catch (const std::bad_alloc&) {
        return memFullErr;
    }
}

} // namespace

const ImageCodec kPictCodec = {kTypes, Sniff, ReadFacts, true, Decode};

} // namespace qt
