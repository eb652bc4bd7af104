// PNG. The facts stand in a few chunks in front of the pixel data; all others are stepped over unread, so
// that a large colour profile or text costs nothing.
#include "platform/quicktime/image_codecs/codec.h"
#include "platform/quicktime/image_codecs/png_decode.h"
#include "platform/quicktime/image_codecs/png_metadata.h"

#include <algorithm>
#include <array>
#include <zlib.h>

namespace qt {
namespace {

constexpr std::array<OSType, 3> kTypes = {Code("PNGf"), Code("PNG "), Code("png ")};
constexpr std::array<unsigned char, 8> kSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::uint32_t kMaximumChunk = 0x7FFF'FFFF;
constexpr std::uint64_t kChunkFrame = 12; ///< length and type in front of a chunk's data, checksum behind
constexpr std::int32_t kLossless = 1024;

enum ColourType : unsigned { kGrey = 0, kRgb = 2, kPalette = 3, kGreyAlpha = 4, kRgba = 6 };

struct Chunk {
    std::uint64_t offset;
    std::uint32_t size;
    OSType type;
};

bool ReadChunkHeader(DataSource& source, std::uint64_t offset, Chunk& chunk) {
    std::array<std::byte, 8> header;
    if (source.Read(offset, header) != header.size()) return false;
    chunk = {offset, BigEndian32(header.data()), BigEndian32(header.data() + 4)};
    return chunk.size <= kMaximumChunk;
}

/// The data of a chunk of known size; false when it has another size or its checksum is wrong.
template <std::size_t kCount>
bool ReadChunk(DataSource& source, const Chunk& chunk, std::array<std::byte, kCount>& data) {
    std::array<std::byte, kCount + 8> bytes; // type, data, checksum
    if (chunk.size != kCount || source.Read(chunk.offset + 4, bytes) != bytes.size()) return false;
    const auto checksum = crc32(0, reinterpret_cast<const Bytef*>(bytes.data()), kCount + 4);
    if (checksum != BigEndian32(bytes.data() + kCount + 4)) return false;
    std::copy_n(bytes.begin() + 4, kCount, data.begin());
    return true;
}

/// Depth of the pixels that decoding gives: samples of 16 bits come out as 8. 0 when there is no such PNG.
std::int16_t DepthOf(unsigned colour_type, unsigned bits) {
    const bool narrow = bits == 1 || bits == 2 || bits == 4;
    const bool wide = bits == 8 || bits == 16;
    unsigned depth = 0;
    switch (colour_type) {
    case kGrey: depth = bits == 1 ? 1 : narrow ? 32 + bits : wide ? 40 : 0; break;
    case kPalette: depth = narrow || bits == 8 ? bits : 0; break;
    case kRgb: depth = wide ? 24 : 0; break;
    case kGreyAlpha:
    case kRgba: depth = wide ? 32 : 0; break;
    default: break;
    }
    return static_cast<std::int16_t>(depth);
}

ComponentResult ReadImageHeader(DataSource& source, const Chunk& chunk, ImageDescription& description,
                                unsigned& colour_type) {
    std::array<std::byte, 13> header;
    if (chunk.type != Code("IHDR") || !ReadChunk(source, chunk, header)) return codecBadDataErr;
    colour_type = std::to_integer<unsigned>(header[9]);
    description.depth = DepthOf(colour_type, std::to_integer<unsigned>(header[8]));
    const auto compression = std::to_integer<unsigned>(header[10]);
    const auto filter = std::to_integer<unsigned>(header[11]);
    const auto interlace = std::to_integer<unsigned>(header[12]);
    if (description.depth == 0 || compression != 0 || filter != 0 || interlace > 1) return codecBadDataErr;
    return SetDimensions(description, BigEndian32(header.data()), BigEndian32(header.data() + 4));
}

void ReadResolution(DataSource& source, const Chunk& chunk, ImageDescription& description) {
    constexpr double kMetresPerInch = 0.0254;
    std::array<std::byte, 9> data;
    if (!ReadChunk(source, chunk, data) || std::to_integer<unsigned>(data[8]) != 1) return;
    description.hRes = FixedResolution(BigEndian32(data.data()) * kMetresPerInch);
    description.vRes = FixedResolution(BigEndian32(data.data() + 4) * kMetresPerInch);
}

bool Sniff(std::span<const std::byte> head) {
    return head.size() >= kSignature.size() &&
           std::equal(kSignature.begin(), kSignature.end(), head.begin(),
                      [](unsigned char left, std::byte right) { return std::byte{left} == right; });
}

ComponentResult ReadFacts(DataSource& source, ImageFacts& facts) {
    std::array<std::byte, kSignature.size()> signature;
    if (source.Read(0, signature) != signature.size() || !Sniff(signature)) return codecBadDataErr;
    ImageDescription& description = facts.description;
    description.cType = Code("png ");
    description.name = Name("PNG");
    description.spatialQuality = kLossless;
    facts.data_size = source.GetSize();

    Chunk chunk{};
    unsigned colour_type = 0;
    if (!ReadChunkHeader(source, signature.size(), chunk)) return codecBadDataErr;
    if (const auto code = ReadImageHeader(source, chunk, description, colour_type); code != noErr)
        return code;
    bool has_palette = false;
    while (ReadChunkHeader(source, chunk.offset + chunk.size + kChunkFrame, chunk)) {
        if (chunk.type == Code("PLTE")) has_palette = true;
        if (chunk.type == Code("pHYs")) ReadResolution(source, chunk, description);
        if (chunk.type == Code("IEND")) break;
        if (chunk.type == Code("IDAT")) {
            const bool complete = colour_type != kPalette || has_palette;
            std::array<std::byte, 1> first;
            const bool begins = source.Read(chunk.offset + 8, first) == 1;
            return complete && begins ? ComponentResult{noErr} : codecBadDataErr;
        }
    }
    return codecBadDataErr;
}

} // namespace

const ImageCodec kPngCodec = {kTypes, Sniff, ReadFacts, true, DecodePng, ReadPngMetadata};

} // namespace qt
