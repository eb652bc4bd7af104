#include "platform/quicktime/image_codecs/psd_header.h"

#include <algorithm>
#include <string_view>

namespace qt {
namespace {

constexpr std::size_t kHeader = 26;
constexpr std::size_t kPaletteBytes = 768; ///< 256 reds, greens, blues
constexpr std::string_view kTransparency = "Transparency";

/// A size in front of a section; false when the section does not begin or can't end in the file.
bool ReadSize(DataSource& source, std::uint64_t at, bool wide, std::uint64_t& size) {
    std::array<std::byte, 8> bytes;
    const std::size_t width = wide ? 8 : 4;
    if (source.Read(at, std::span(bytes).first(width)) != width) return false;
    size = BigEndian32(bytes.data());
    if (wide) size = size << 32 | BigEndian32(&bytes[4]);
    return size <= source.GetSize() - at - width;
}

bool ReadFixedPart(DataSource& source, PsdHeader& header) {
    std::array<std::byte, kHeader> bytes;
    if (source.Read(0, bytes) != bytes.size() || BigEndian32(bytes.data()) != Code("8BPS")) return false;
    const std::uint32_t version = BigEndian16(&bytes[4]);
    if (version != 1 && version != 2) return false;
    header.is_large = version == 2;
    header.channels = BigEndian16(&bytes[12]);
    header.height = BigEndian32(&bytes[14]);
    header.width = BigEndian32(&bytes[18]);
    header.depth = BigEndian16(&bytes[22]);
    header.mode = BigEndian16(&bytes[24]);
    const bool has_depth = header.depth == 1 || header.depth == 8 || header.depth == 16 || header.depth == 32;
    const std::uint32_t colours = header.ColourChannels();
    const bool is_flat_depth = (header.mode == PsdHeader::kBitmap) == (header.depth == 1);
    return has_depth && is_flat_depth && colours > 0 && header.channels >= colours && header.channels <= 56;
}

void ReadPalette(DataSource& source, std::uint64_t at, PsdHeader& header) {
    std::array<std::byte, kPaletteBytes> bytes{};
    source.Read(at, bytes);
    for (std::size_t i = 0; i < header.palette.size(); ++i) {
        const auto value = [&](std::size_t channel) {
            return std::to_integer<std::uint32_t>(bytes[channel * 256 + i]);
        };
        header.palette[i] = Pixel(value(0), value(1), value(2));
    }
}

struct Resources {
    bool names_channels = false;
    bool names_transparency = false;
};

/// Reads what is needed of the image resources: each a signature, number, name, size and data.
Resources ReadResources(DataSource& source, PsdHeader& header) {
    constexpr std::size_t kLeast = 12;
    Resources found;
    std::array<std::byte, 512> bytes;
    const std::uint64_t end = header.resources_at + header.resources_size;
    for (std::uint64_t at = header.resources_at; at + kLeast <= end;) {
        const std::size_t count = source.Read(at, bytes);
        const std::size_t name_size = count < kLeast ? 0 : std::to_integer<std::size_t>(bytes[6]) / 2 * 2 + 2;
        const std::size_t data_at = 6 + name_size + 4;
        if (count < std::max(kLeast, data_at)) break;
        const std::uint32_t signature = BigEndian32(bytes.data());
        if (signature != Code("8BIM") && signature != Code("MeSa")) break;
        const std::uint32_t number = BigEndian16(&bytes[4]);
        const std::uint64_t size = BigEndian32(&bytes[data_at - 4]);
        const auto data = std::span(bytes).first(count).subspan(data_at);
        if (number == kPsdResolution && size >= 16 && data.size() >= 16) {
            header.horizontal_dpi = BigEndian32(data.data()) / 65'536.0;
            header.vertical_dpi = BigEndian32(&data[8]) / 65'536.0;
        } else if (number == kPsdAlphaNames && size > 1) {
            const std::string_view text(reinterpret_cast<const char*>(data.data()), data.size());
            found.names_channels = true;
            found.names_transparency = text.size() > 1 && text.substr(1).starts_with(kTransparency);
        }
        at += data_at + size + size % 2;
    }
    return found;
}

/// The number of layers is negative when the first channel behind the colours is transparency.
int LayerCount(DataSource& source, std::uint64_t section_at, std::uint64_t section_size, bool is_large) {
    const std::uint64_t count_at = section_at + (is_large ? 8 : 4);
    std::array<std::byte, 2> bytes;
    if (section_size < (is_large ? 10U : 6U) || source.Read(count_at, bytes) != bytes.size()) return 0;
    return static_cast<std::int16_t>(BigEndian16(bytes.data()));
}

} // namespace

std::uint32_t PsdHeader::ColourChannels() const {
    switch (mode) {
    case kBitmap:
    case kGrey:
    case kIndexed:
    case kDuotone: return 1;
    case kRgb:
    case kLab: return 3;
    case kCmyk: return 4;
    case kMultichannel: return channels >= 4 ? 4 : 1;
    default: return 0;
    }
}

bool PsdHeader::IsGrey() const {
    return ColourChannels() == 1 && mode != kIndexed;
}

bool ReadPsdHeader(DataSource& source, PsdHeader& header) {
    if (!ReadFixedPart(source, header)) return false;
    std::uint64_t at = kHeader;
    std::uint64_t size = 0;
    if (!ReadSize(source, at, false, size)) return false;
    if (header.mode == PsdHeader::kIndexed) {
        if (size < kPaletteBytes) return false;
        ReadPalette(source, at + 4, header);
    }
    at += 4 + size;
    if (!ReadSize(source, at, false, size)) return false;
    header.resources_at = at + 4;
    header.resources_size = size;
    const Resources resources = ReadResources(source, header);
    at += 4 + size;
    if (!ReadSize(source, at, header.is_large, size)) return false;
    const std::uint64_t layers_at = at + (header.is_large ? 8 : 4);
    const int layers = LayerCount(source, layers_at, size, header.is_large);
    // Without layers a channel that has another name is a selection that was kept.
    const bool is_transparency =
        layers < 0 || (layers == 0 && (!resources.names_channels || resources.names_transparency));
    header.has_alpha = header.channels > header.ColourChannels() && is_transparency &&
                       header.mode != PsdHeader::kMultichannel;
    header.image_at = layers_at + size;
    return header.image_at + 2 < source.GetSize();
}

ComponentResult DescribePsd(const PsdHeader& header, ImageDescription& description) {
    description.cType = Code("8BPS");
    description.name = Name("Photoshop");
    description.spatialQuality = kLosslessQuality;
    // Less than a dot to the inch is what writers without a resolution leave behind.
    description.hRes = FixedResolution(header.horizontal_dpi >= 1.0 ? header.horizontal_dpi : 0.0);
    description.vRes = FixedResolution(header.vertical_dpi >= 1.0 ? header.vertical_dpi : 0.0);
    const bool is_wide = header.has_alpha || header.ColourChannels() == 4;
    const int depth = header.mode == PsdHeader::kBitmap    ? 1
                      : is_wide                            ? 32
                      : header.mode == PsdHeader::kIndexed ? 8
                      : header.IsGrey()                    ? 40
                                                           : 24;
    description.depth = static_cast<std::int16_t>(depth);
    return SetDimensions(description, header.width, header.height);
}

} // namespace qt
