#include "platform/quicktime/image_codecs/metadata_items.h"

#include "platform/modules/modules.h"
#include "platform/quicktime/image_codecs/raster.h"
#include "platform/quicktime/modules/metadata_module.h"
#include "platform/text/utf.h"

#include <algorithm>
#include <array>
#include <new>

namespace qt {
namespace {

struct Meaning {
    std::string_view key;
    OSType type;
};

constexpr std::array<Meaning, 25> kMeanings = {{
    {"Iptc.Application2.ObjectName", TextItem("nam")},
    {"Iptc.Application2.Caption", TextItem("des")},
    {"Iptc.Application2.Headline", TextItem("inf")},
    {"Iptc.Application2.Byline", TextItem("aut")},
    {"Iptc.Application2.Credit", TextItem("prd")},
    {"Iptc.Application2.Source", TextItem("src")},
    {"Iptc.Application2.Copyright", TextItem("cpy")},
    {"Iptc.Application2.Keywords", TextItem("key")},
    {"Iptc.Application2.DateCreated", TextItem("day")},
    {"Iptc.Application2.Program", TextItem("swr")},
    {"Iptc.Application2.SpecialInstructions", TextItem("req")},
    {"Iptc.Application2.Writer", TextItem("wrt")},
    {"Xmp.dc.title", TextItem("nam")},
    {"Xmp.dc.description", TextItem("des")},
    {"Xmp.dc.creator", TextItem("aut")},
    {"Xmp.dc.source", TextItem("src")},
    {"Xmp.dc.rights", TextItem("cpy")},
    {"Xmp.dc.subject", TextItem("key")},
    {"Xmp.photoshop.Headline", TextItem("inf")},
    {"Xmp.photoshop.Credit", TextItem("prd")},
    {"Xmp.photoshop.DateCreated", TextItem("day")},
    {"Xmp.photoshop.Instructions", TextItem("req")},
    {"Xmp.photoshop.CaptionWriter", TextItem("wrt")},
    {"Xmp.xmp.CreateDate", TextItem("day")},
    {"Xmp.xmp.CreatorTool", TextItem("swr")},
}};

struct Received {
    std::vector<MetadataItem>& items;
    std::size_t already; ///< items that were there before: their types take no more
    bool only_new_types;
};

void Receive(void* context, const char* key, const char* text, std::size_t size) {
    const auto& received = *static_cast<Received*>(context);
    const auto* meaning = std::ranges::find(kMeanings, key, &Meaning::key);
    if (meaning == kMeanings.end()) return;
    const auto known = std::span(received.items).first(received.already);
    if (received.only_new_types &&
        std::ranges::find(known, meaning->type, &MetadataItem::type) != known.end())
        return;
    try {
        AppendTextItem(meaning->type, {text, size}, received.items);
    } catch (const std::bad_alloc&) {
        return; // one text less
    }
}

/// Null for a block without bytes, and for one above the limit.
const MetadataModule* ModuleFor(std::size_t block_size) {
    if (block_size == 0 || block_size > kLargestMetadataBlock) return nullptr;
    return modules::Table<MetadataModule>("metadata");
}

/// The library looks for each property of a packet among those before it, so that time grows with the square
/// of their number. Marks and equals signs bound that number; members of lists are appended without a search.
bool HasTooManyProperties(std::string_view packet) {
    constexpr std::ptrdiff_t kMost = 10'000;
    const auto is_member = [&](std::size_t at) {
        std::string_view tag = packet.substr(at + 1);
        if (tag.starts_with('/')) tag.remove_prefix(1);
        constexpr std::string_view kMember = "rdf:li";
        return tag.starts_with(kMember) && tag.substr(kMember.size()).find_first_of(" \t\r\n/>") == 0;
    };
    std::ptrdiff_t count = std::ranges::count(packet, '=');
    for (std::size_t at = packet.find('<'); at != std::string_view::npos && count <= kMost;
         at = packet.find('<', at + 1))
        if (!is_member(at)) ++count;
    return count > kMost;
}

/// The same of IPTC's data sets, each of which begins with this byte.
bool HasTooManyDataSets(std::span<const std::byte> record) {
    constexpr std::ptrdiff_t kMost = 10'000;
    return std::ranges::count(record, std::byte{0x1C}) > kMost;
}

} // namespace

void AppendTextItem(OSType type, std::string_view text, std::vector<MetadataItem>& items) {
    constexpr std::size_t kMostItems = 32'767;
    if (text.empty() || items.size() == kMostItems) return;
    items.push_back({type, utf::NearestLatin1(text)});
}

void AppendIptcItems(std::span<const std::byte> record, std::vector<MetadataItem>& items) {
    const MetadataModule* module = HasTooManyDataSets(record) ? nullptr : ModuleFor(record.size());
    if (module == nullptr) return;
    Received received{items, items.size(), false};
    module->read_iptc(record.data(), record.size(), Receive, &received);
}

void AppendXmpItems(std::string_view packet, std::vector<MetadataItem>& items) {
    const MetadataModule* module = HasTooManyProperties(packet) ? nullptr : ModuleFor(packet.size());
    if (module == nullptr) return;
    Received received{items, items.size(), true};
    module->read_xmp(packet.data(), packet.size(), Receive, &received);
}

std::span<const std::byte> FindImageResource(std::span<const std::byte> resources, std::uint32_t id) {
    constexpr std::size_t kFixedSize = 12; // signature, number, the shortest name, size
    const auto even = [](std::size_t size) { return size + size % 2; };
    while (resources.size() >= kFixedSize && BigEndian32(resources.data()) == Code("8BIM")) {
        const std::uint32_t number = BigEndian16(resources.data() + 4);
        const std::size_t name_size = even(1 + std::to_integer<std::size_t>(resources[6]));
        if (resources.size() < 10 + name_size) break;
        const std::size_t size = BigEndian32(resources.data() + 6 + name_size);
        resources = resources.subspan(10 + name_size);
        if (number == id) return resources.first(std::min(size, resources.size()));
        if (even(size) >= resources.size()) break;
        resources = resources.subspan(even(size));
    }
    return {};
}

} // namespace qt
