#include "platform/quicktime/image_codecs/jpeg_metadata.h"

#include "platform/quicktime/image_codecs/jpeg_segments.h"
#include "platform/quicktime/image_codecs/metadata_items.h"
#include "platform/quicktime/image_codecs/raster.h"

namespace qt {
namespace {

constexpr unsigned kComment = 0xFE;
constexpr unsigned kXmpMarker = 0xE1;
constexpr unsigned kResourceMarker = 0xED;

struct Blocks {
    std::string xmp;
    std::string resources;
};

/// Reads the segments in front of the first scan that may hold texts; comments become items.
Blocks ReadBlocks(DataSource& source, std::vector<MetadataItem>& items) {
    Blocks blocks;
    ForEachJpegSegment(source, [&](const JpegSegment& segment) {
        const unsigned marker = segment.marker;
        if (marker != kComment && marker != kXmpMarker && marker != kResourceMarker) return true;
        std::string data(segment.size, '\0');
        data.resize(source.Read(segment.data_at, std::as_writable_bytes(std::span(data))));
        if (marker == kComment)
            AppendTextItem(TextItem("cmt"), std::string_view(data).substr(0, data.find('\0')), items);
        if (marker == kXmpMarker && data.starts_with(kXmpTag)) blocks.xmp = data.substr(kXmpTag.size());
        if (marker == kResourceMarker && data.starts_with(kImageResourceTag))
            blocks.resources += data.substr(kImageResourceTag.size());
        return true;
    });
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
