// TIFF, through libtiff. Its orientation is left as stored.
#include "platform/quicktime/image_codecs/metadata_items.h"
#include "platform/quicktime/image_codecs/raster.h"
#include "platform/quicktime/image_codecs/tiff_file.h"

#include <algorithm>

namespace qt {
namespace {

constexpr std::array<OSType, 3> kTypes = {Code("TIFF"), Code("tiff"), Code("tif ")};

std::int16_t DepthOf(const TiffLayout& layout) {
    if (layout.is_converted || layout.colours == 3) return layout.has_alpha ? 32 : 24;
    if (layout.colours == 4 || layout.has_alpha) return 32;
    const auto bits = static_cast<std::int16_t>(layout.bits <= 2 ? layout.bits : layout.bits <= 4 ? 4 : 8);
    const bool is_grey = layout.photometric != PHOTOMETRIC_PALETTE && bits > 1;
    return static_cast<std::int16_t>(is_grey ? 32 + bits : bits);
}

Fixed ResolutionOf(TIFF* tiff, std::uint32_t tag) {
    constexpr double kCentimetresPerInch = 2.54;
    float value = 0.0F;
    std::uint16_t unit = RESUNIT_INCH;
    g_tiff->GetField(tiff, tag, &value);
    g_tiff->GetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
    if (unit != RESUNIT_INCH && unit != RESUNIT_CENTIMETER) value = 0.0F;
    return FixedResolution(unit == RESUNIT_CENTIMETER ? value * kCentimetresPerInch : value);
}

/// JPEG inside says nothing of its quality here.
std::int32_t QualityOf(std::uint16_t compression) {
    const bool is_lossy = compression == COMPRESSION_JPEG || compression == COMPRESSION_OJPEG;
    return is_lossy ? 512 : kLosslessQuality;
}

bool Sniff(std::span<const std::byte> head) {
    using namespace std::string_view_literals;
    constexpr std::array kSignatures = {"II*\0"sv, "MM\0*"sv, "II+\0\x08\0\0\0"sv, "MM\0+\0\x08\0\0"sv};
    return std::ranges::any_of(kSignatures, [&](std::string_view signature) {
        return head.size() >= 8 && std::memcmp(head.data(), signature.data(), signature.size()) == 0;
    });
}

/// Goes to the image of that index, from 1, and reads its layout when its samples begin within the data.
ComponentResult ReadStoredLayout(TIFF* tiff, const DataSource& source, std::uint32_t index,
                                 TiffLayout& layout) {
    if (index == 0) return paramErr;
    if (index > 1 && g_tiff->SetDirectory(tiff, index - 1) == 0) return paramErr;
    if (const auto code = ReadTiffLayout(tiff, layout); code != noErr) return code;
    return g_tiff->GetStrileOffset(tiff, 0) < source.GetSize() ? ComponentResult{noErr} : codecBadDataErr;
}

ComponentResult DescribeIn(TIFF* tiff, const DataSource& source, std::uint32_t index,
                           ImageDescription& description) {
    if (tiff == nullptr) return codecBadDataErr;
    TiffLayout layout;
    if (const auto code = ReadStoredLayout(tiff, source, index, layout); code != noErr) return code;
    description.cType = Code("tiff");
    description.name = Name("TIFF");
    description.spatialQuality = QualityOf(layout.compression);
    description.depth = DepthOf(layout);
    description.hRes = ResolutionOf(tiff, TIFFTAG_XRESOLUTION);
    description.vRes = ResolutionOf(tiff, TIFFTAG_YRESOLUTION);
    return SetDimensions(description, layout.width, layout.height);
}

ComponentResult Describe(DataSource& source, std::uint32_t index, ImageDescription& description) {
    const TiffFile file(source);
    return DescribeIn(file.Get(), source, index, description);
}

ComponentResult ReadFacts(DataSource& source, ImageFacts& facts) {
    const TiffFile file(source);
    if (const auto code = DescribeIn(file.Get(), source, 1, facts.description); code != noErr) return code;
    facts.image_count = std::max<std::uint32_t>(g_tiff->NumberOfDirectories(file.Get()), 1);
    facts.data_size = source.GetSize();
    return noErr;
}

ComponentResult Decode(DataSource& source, std::uint32_t index, PixelImage& image) {
    constexpr std::uint32_t kMostPixelsOfPlainByte = 8;
    constexpr std::uint32_t kMostPixelsOfPackedByte = 22'000; // LZW of one bit a pixel
    const TiffFile file(source);
    TIFF* tiff = file.Get();
    if (tiff == nullptr) return codecBadDataErr;
    TiffLayout layout;
    ImageDescription description;
    if (const auto code = ReadStoredLayout(tiff, source, index, layout); code != noErr) return code;
    if (const auto code = SetDimensions(description, layout.width, layout.height); code != noErr) return code;
    const std::uint32_t pixels_per_byte =
        layout.compression == COMPRESSION_NONE ? kMostPixelsOfPlainByte : kMostPixelsOfPackedByte;
    if (const auto code = AllocateFor(description, source, pixels_per_byte, image); code != noErr)
        return code;
    return DecodeTiff(tiff, layout, source, image);
}

/// The bytes of a tag that holds a block of another format; empty when it is absent.
std::span<const std::byte> BlockOf(TIFF* tiff, std::uint32_t tag) {
    std::uint32_t count = 0;
    const void* data = nullptr;
    if (g_tiff->GetField(tiff, tag, &count, &data) == 0 || data == nullptr) return {};
    return {static_cast<const std::byte*>(data), count};
}

/// IPTC for itself or among Photoshop's resources, and XMP.
void AppendBlocks(TIFF* tiff, std::vector<MetadataItem>& items) {
    const std::span<const std::byte> resources = BlockOf(tiff, TIFFTAG_PHOTOSHOP);
    const std::span<const std::byte> words = BlockOf(tiff, TIFFTAG_RICHTIFFIPTC);
    // The library counts bytes here, but has put those that the file calls words into this machine's order.
    constexpr std::byte kDataSet{0x1C}; // begins a record
    std::vector<std::uint32_t> restored((words.size() + 3) / 4);
    if (!words.empty()) std::memcpy(restored.data(), words.data(), words.size());
    if (g_tiff->IsByteSwapped(tiff) != 0 && !words.empty() && words.front() != kDataSet) {
        g_tiff->SwabArrayOfLong(restored.data(), static_cast<tmsize_t>(words.size() / 4));
    }
    const std::span<const std::byte> iptc = std::as_bytes(std::span(restored)).first(words.size());
    const std::size_t before = items.size();
    AppendIptcItems(iptc, items);
    // Writers that count words where the library counts bytes leave a quarter of it, and the whole there.
    if (items.size() == before) AppendIptcItems(FindImageResource(resources, kIptcResource), items);
    const std::span<const std::byte> packet = BlockOf(tiff, TIFFTAG_XMLPACKET);
    AppendXmpItems({reinterpret_cast<const char*>(packet.data()), packet.size()}, items);
}

ComponentResult ReadMetadata(DataSource& source, std::vector<MetadataItem>& items) {
    struct TextTag {
        std::uint32_t tag;
        OSType type;
    };
    constexpr std::array<TextTag, 9> kTexts = {{
        {TIFFTAG_DOCUMENTNAME, TextItem("nam")},
        {TIFFTAG_IMAGEDESCRIPTION, TextItem("des")},
        {TIFFTAG_ARTIST, TextItem("ART")},
        {TIFFTAG_COPYRIGHT, TextItem("cpy")},
        {TIFFTAG_DATETIME, TextItem("day")},
        {TIFFTAG_MAKE, TextItem("mak")},
        {TIFFTAG_MODEL, TextItem("mod")},
        {TIFFTAG_SOFTWARE, TextItem("swr")},
        {TIFFTAG_HOSTCOMPUTER, TextItem("hst")},
    }};
    const TiffFile file(source);
    if (file.Get() == nullptr) return codecBadDataErr;
    for (const TextTag& text : kTexts) {
        const char* value = nullptr;
        if (g_tiff->GetField(file.Get(), text.tag, &value) == 0 || value == nullptr) continue;
        AppendTextItem(text.type, value, items);
    }
    AppendBlocks(file.Get(), items);
    return noErr;
}

} // namespace

const ImageCodec kTiffCodec = {kTypes, Sniff, ReadFacts, true, Decode, ReadMetadata, nullptr, Describe};

} // namespace qt
