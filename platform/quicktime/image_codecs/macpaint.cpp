// MacPaint: one page of 576 by 720 black and white dots, each row packed, behind a header of 512 bytes and
// maybe one of 128 that tells the file's name and type.
#include "platform/quicktime/image_codecs/packbits.h"
#include "platform/quicktime/image_codecs/raster.h"

#include <algorithm>

namespace qt {
namespace {

constexpr std::array<OSType, 4> kTypes = {Code("PNTG"), Code("pntg"), Code("PNT "), Code("mac ")};
constexpr std::uint32_t kWidth = 576;
constexpr std::uint32_t kHeight = 720;
constexpr std::size_t kRowBytes = kWidth / 8;
constexpr std::size_t kHeader = 512;
constexpr std::size_t kFileHeader = 128; ///< of a file that came with its name and type
constexpr std::size_t kTypeAt = 65;
constexpr std::size_t kPatternsEnd = 4 + 38 * 8; ///< the rest of the header is zero

/// Whether the packed rows begin so: no run crosses the end of a row, and some row is complete.
bool HoldsRows(std::span<const std::byte> packed) {
    std::size_t in_row = 0;
    bool has_row = false;
    bool has_run = false;
    for (std::size_t at = 0; at < packed.size();) {
        const auto head = std::to_integer<std::size_t>(packed[at]);
        const bool is_run = head > 128;
        if (head != 128) in_row += is_run ? 257 - head : head + 1;
        at += head == 128 ? 1 : is_run ? 2 : head + 2;
        if (in_row > kRowBytes) return false;
        has_run |= is_run;
        if (in_row < kRowBytes) continue;
        has_row = true;
        in_row = 0;
    }
    return has_row && has_run;
}

/// Where the packed rows begin; 0 when the data is no MacPaint file.
std::size_t FindRows(std::span<const std::byte> head) {
    const bool has_file_header =
        head.size() >= kFileHeader && head[0] == std::byte{0} && BigEndian32(&head[kTypeAt]) == Code("PNTG");
    if (has_file_header) return head.size() > kFileHeader + kHeader ? kFileHeader + kHeader : 0;
    constexpr std::uint32_t kLatestVersion = 3;
    if (head.size() <= kHeader || BigEndian32(head.data()) > kLatestVersion) return 0;
    const auto unused = head.first(kHeader).subspan(kPatternsEnd);
    const bool is_empty = std::ranges::all_of(unused, [](std::byte byte) { return byte == std::byte{0}; });
    return is_empty && HoldsRows(head.subspan(kHeader)) ? kHeader : 0;
}

bool Sniff(std::span<const std::byte> head) {
    return FindRows(head) != 0;
}

ComponentResult ReadFacts(DataSource& source, ImageFacts& facts) {
    std::array<std::byte, kSniffedBytes> head;
    const std::size_t rows_at = FindRows(std::span(head).first(source.Read(0, head)));
    if (rows_at == 0) return codecBadDataErr;
    facts.data_offset = rows_at;
    facts.data_size = source.GetSize() - rows_at;
    ImageDescription& description = facts.description;
    description.cType = Code("PNTG");
    description.name = Name("MacPaint");
    description.spatialQuality = kLosslessQuality;
    description.depth = 1;
    return SetDimensions(description, kWidth, kHeight);
}

ComponentResult Decode(DataSource& source, std::uint32_t /*index*/, PixelImage& image) {
    constexpr std::size_t kBits = kRowBytes * kHeight;
    ImageFacts facts;
    if (const auto code = ReadFacts(source, facts); code != noErr) return code;
    if (const auto code = AllocateFor(facts.description, image); code != noErr) return code;
    std::vector<std::byte> packed(
        static_cast<std::size_t>(std::min<std::uint64_t>(facts.data_size, 2 * kBits)));
    packed.resize(source.Read(facts.data_offset, packed));
    std::vector<std::byte> bits(kBits); // zero is white
    if (UnpackBits(packed, bits).written == 0) return codecBadDataErr;
    Palette palette{};
    palette[0] = kWhite;
    palette[1] = kBlack;
    for (std::int32_t y = 0; y < image.height(); ++y) {
        const std::byte* row = &bits[static_cast<std::size_t>(y) * kRowBytes];
        PixelsFromIndices(row, 1, palette, image.width(), image.Row(y));
    }
    image.has_alpha = false;
    image.is_grey = true;
    return noErr;
}

} // namespace

const ImageCodec kMacPaintCodec = {kTypes, Sniff, ReadFacts, true, Decode};

} // namespace qt
