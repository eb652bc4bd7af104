#include "platform/quicktime/image_codecs/jpeg_metadata.h"

#include "platform/quicktime/image_codecs/metadata_items.h"
#include "platform/quicktime/image_codecs/raster.h"

#include <array>

namespace qt {
namespace {

using namespace std::string_view_literals;

constexpr unsigned kComment = 0xFE;
constexpr unsigned kScan = 0xDA;
constexpr unsigned kEndOfImage = 0xD9;
constexpr unsigned kXmpMarker = 0xE1;
constexpr unsigned kResourceMarker = 0xED;
constexpr std::string_view kXmpTag = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr std::string_view kResourceTag = "Photoshop 3.0\0"sv;

struct Blocks {
    std::string xmp;
    std::string resources;
};

/// Reads the segments in front of the first scan that may hold texts; comments become items.
Blocks ReadBlocks(DataSource& source, std::vector<MetadataItem>& items) {
    Blocks blocks;
    std::uint64_t offset = 2;
    std::array<std::byte, 4> head;
    while (source.Read(offset, head) == head.size() && head[0] == std::byte{0xFF}) {
        const auto marker = std::to_integer<unsigned>(head[1]);
        if (marker == 0xFF) { // a fill byte
            ++offset;
            continue;
        }
        const std::size_t size = BigEndian16(head.data() + 2);
        if (marker == kScan || marker == kEndOfImage || size < 2) break;
        if (marker == kComment || marker == kXmpMarker || marker == kResourceMarker) {
            std::string data(size - 2, '\0');
            data.resize(source.Read(offset + 4, std::as_writable_bytes(std::span(data))));
            if (marker == kComment)
                AppendTextItem(TextItem("cmt"), std::string_view(data).substr(0, data.find('\0')), items);
            if (marker == kXmpMarker && data.starts_with(kXmpTag)) blocks.xmp = data.substr(kXmpTag.size());
            if (marker == kResourceMarker && data.starts_with(kResourceTag))
                blocks.resources += data.substr(kResourceTag.size());
        }
        offset += 2 + size;
    }
    return blocks;
}

} // namespace

ComponentResult ReadJpegMetadata(DataSource& source, std::vector<MetadataItem>& items) {
    const Blocks blocks = ReadBlocks(source, items);
    AppendIptcItems(FindImageResource(std::as_bytes(std::span(blocks.resources)), kIptcResource), items);
    AppendXmpItems(blocks.xmp, items);
    return noErr;
}

} // namespace qt
