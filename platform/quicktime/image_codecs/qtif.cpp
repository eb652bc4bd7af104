// QuickTime image files: atoms, of which one describes an image and one holds its data.
#include "platform/quicktime/image_codecs/described_image.h"

#include <algorithm>
#include <array>

namespace qt {
namespace {

constexpr std::array<OSType, 3> kTypes = {Code("qtif"), Code("QTIF"), Code("qti ")};
constexpr std::uint64_t kAtomHeader = 8;
constexpr std::uint64_t kLongAtomHeader = 16;
constexpr std::uint64_t kLargestDescription = 65'536; ///< bytes, colours included
constexpr int kMostAtoms = 1000;

struct Atom {
    OSType type = 0;
    std::uint64_t data_at = 0;
    std::uint64_t data_size = 0; ///< held at the end of the file
};

bool ReadAtom(DataSource& source, std::uint64_t at, Atom& atom) {
    std::array<std::byte, kLongAtomHeader> header;
    const std::size_t count = source.Read(at, header);
    if (count < kAtomHeader) return false;
    const std::uint64_t left = source.GetSize() - at;
    std::uint64_t size = BigEndian32(header.data());
    std::uint64_t header_size = kAtomHeader;
    if (size == 0) size = left;
    if (size == 1) {
        if (count < kLongAtomHeader) return false;
        size = std::uint64_t{BigEndian32(&header[8])} << 32 | BigEndian32(&header[12]);
        header_size = kLongAtomHeader;
    }
    if (size < header_size) return false;
    atom.type = BigEndian32(&header[4]);
    atom.data_at = at + header_size;
    atom.data_size = std::min(size, left) - std::min(header_size, left);
    return true;
}

bool Sniff(std::span<const std::byte> head) {
    if (head.size() < kAtomHeader) return false;
    const OSType type = BigEndian32(&head[4]);
    return type == Code("idsc") || type == Code("idat");
}

/// The first description and the first data; codecBadDataErr when either is missing.
ComponentResult ReadParts(DataSource& source, DescribedImage& described, Atom& data) {
    bool has_description = false;
    bool has_data = false;
    std::uint64_t at = 0;
    Atom atom;
    for (int i = 0; i < kMostAtoms && !(has_description && has_data) && ReadAtom(source, at, atom); ++i) {
        at = atom.data_at + atom.data_size;
        if (atom.type == Code("idat") && !has_data) {
            data = atom;
            has_data = true;
        } else if (atom.type == Code("idsc") && !has_description) {
            std::vector<std::byte> bytes(
                static_cast<std::size_t>(std::min(atom.data_size, kLargestDescription)));
            bytes.resize(source.Read(atom.data_at, bytes));
            if (!ReadImageDescription(bytes, described)) return codecBadDataErr;
            has_description = true;
        }
    }
    return has_description && has_data && data.data_size > 0 ? ComponentResult{noErr} : codecBadDataErr;
}

ComponentResult ReadFacts(DataSource& source, ImageFacts& facts) {
    DescribedImage described;
    Atom data;
    if (const auto code = ReadParts(source, described, data); code != noErr) return code;
    facts.description = described.description;
    facts.data_offset = data.data_at;
    facts.data_size = data.data_size;
    const ImageDescription& description = described.description;
    return SetDimensions(facts.description, static_cast<std::uint32_t>(description.width),
                         static_cast<std::uint32_t>(description.height));
}

ComponentResult Decode(DataSource& source, std::uint32_t /*index*/, PixelImage& image) {
    DescribedImage described;
    Atom data;
    if (const auto code = ReadParts(source, described, data); code != noErr) return code;
    PartSource part(source, data.data_at, data.data_size);
    if (const auto code = DecodeDescribedImage(described, part, image); code != noErr) return code;
    const bool is_as_described =
        image.width() == described.description.width && image.height() == described.description.height;
    return is_as_described ? ComponentResult{noErr} : codecBadDataErr;
}

} // namespace

const ImageCodec kQuickTimeImageCodec = {kTypes, Sniff, ReadFacts, true, Decode};

} // namespace qt
