#include "platform/quicktime/image_codecs/png_metadata.h"

#include "platform/quicktime/image_codecs/metadata_items.h"
#include "platform/quicktime/image_codecs/raster.h"

#include <algorithm>
#include <array>
#include <zlib.h>

namespace qt {
namespace {

struct Keyword {
    std::string_view name;
    OSType type;
};

constexpr std::array<Keyword, 10> kKeywords = {{
    {"Title", TextItem("nam")},
    {"Author", TextItem("aut")},
    {"Description", TextItem("des")},
    {"Copyright", TextItem("cpy")},
    {"Creation Time", TextItem("day")},
    {"Software", TextItem("swr")},
    {"Disclaimer", TextItem("dis")},
    {"Warning", TextItem("wrn")},
    {"Source", TextItem("src")},
    {"Comment", TextItem("cmt")},
}};

constexpr std::string_view kXmpKeyword = "XML:com.adobe.xmp";
constexpr std::size_t kMostTextBytes = 1 << 20; ///< of a chunk, and of all texts that were compressed

/// Takes the part up to a zero byte, and that byte, off the data.
std::string_view TakeString(std::string_view& data) {
    const std::string_view part = data.substr(0, data.find('\0'));
    data.remove_prefix(std::min(part.size() + 1, data.size()));
    return part;
}

struct Collected {
    std::vector<MetadataItem>& items;
    std::string xmp;
    std::size_t left = kMostTextBytes; ///< that compressed texts may still come to
};

/// Empty for broken data; cut where the limit is reached.
std::string Inflate(std::string_view data, Collected& collected) {
    std::string text(std::min(data.size() * 1032, collected.left), '\0');
    uLongf size = text.size();
    const int code = uncompress(reinterpret_cast<Bytef*>(text.data()), &size,
                                reinterpret_cast<const Bytef*>(data.data()), data.size());
    collected.left -= code == Z_OK ? size : text.size(); // broken data costs what it might have been
    text.resize(code == Z_OK || code == Z_BUF_ERROR ? size : 0);
    return text;
}

void Take(std::string_view keyword, std::string_view text, Collected& collected) {
    if (keyword == kXmpKeyword) collected.xmp = text;
    const auto* known = std::ranges::find(kKeywords, keyword, &Keyword::name);
    if (known != kKeywords.end()) AppendTextItem(known->type, text, collected.items);
}

/// A text chunk: the keyword, zero, how the text is stored, the text.
void TakeChunk(OSType type, std::string_view data, Collected& collected) {
    const std::string_view keyword = TakeString(data);
    if (type == Code("tEXt")) return Take(keyword, data, collected);
    if (data.empty()) return;
    if (type == Code("zTXt")) return Take(keyword, Inflate(data.substr(1), collected), collected);
    const bool compressed = data[0] != '\0';
    data.remove_prefix(std::min<std::size_t>(data.size(), 2)); // whether and how it is compressed
    TakeString(data);                                          // the language
    TakeString(data);                                          // the keyword in that language
    Take(keyword, compressed ? Inflate(data, collected) : std::string(data), collected);
}

} // namespace

ComponentResult ReadPngMetadata(DataSource& source, std::vector<MetadataItem>& items) {
    Collected collected{items, {}};
    std::uint64_t offset = 8;
    std::array<std::byte, 8> head;
    while (source.Read(offset, head) == head.size()) {
        const std::uint32_t size = BigEndian32(head.data());
        const OSType type = BigEndian32(head.data() + 4);
        const bool is_text = type == Code("tEXt") || type == Code("zTXt") || type == Code("iTXt");
        if (is_text && size <= kMostTextBytes) {
            std::string data(size, '\0');
            data.resize(source.Read(offset + 8, std::as_writable_bytes(std::span(data))));
            TakeChunk(type, data, collected);
        }
        offset += std::uint64_t{size} + 12;
    }
    AppendXmpItems(collected.xmp, items);
    return noErr;
}

} // namespace qt
