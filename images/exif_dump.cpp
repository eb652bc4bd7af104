#include "images/exif_dump.h"

#include "platform/quicktime/modules/exif_library.h"
#include "platform/text/utf.h"

#include <algorithm>
#include <array>
#include <memory>

namespace corvane {
namespace {

constexpr unsigned kStartOfImage = 0xD8;
constexpr unsigned kEndOfImage = 0xD9;
constexpr unsigned kExifMarker = 0xE1;

struct Section {
    unsigned marker = kEndOfImage;
    std::span<const std::byte> content; ///< behind its size; as much as there is
    int size = 0;                       ///< of the content, as the data states it
};

/// The section behind the start marker; an end marker when there is none.
Section SecondSection(std::span<const std::byte> jpeg) {
    const auto byte = [&](std::size_t at) { return std::to_integer<unsigned>(jpeg[at]); };
    std::size_t at = 2;
    while (at < jpeg.size() && byte(at) == 0xFF) ++at; // fill bytes, of which the marker needs one
    if (at == 2 || at + 3 > jpeg.size()) return {};
    Section section{byte(at), {}, 0};
    if (section.marker == kStartOfImage || section.marker == kEndOfImage) return section;
    const std::size_t stated = byte(at + 1) << 8 | byte(at + 2);
    if (stated < 2) return {};
    section.content = jpeg.subspan(at + 3).first(std::min(stated - 2, jpeg.size() - at - 3));
    section.size = static_cast<int>(stated - 2);
    return section;
}

struct ExifDataFreer {
    void operator()(ExifData* data) const { qt::g_exif->data_unref(data); }
};

/// Cameras write ASCII, other programs UTF-8.
void AddEntry(ExifEntry* entry, void* context) {
    std::array<char, 1024> value{};
    qt::g_exif->entry_get_value(entry, value.data(), value.size());
    const char* name =
        qt::g_exif->tag_get_name_in_ifd(entry->tag, qt::g_exif->content_get_ifd(entry->parent));
    static_cast<MetadataText*>(context)->AddLine(std::string("  ") + (name != nullptr ? name : "") + ": " +
                                                 utf::NearestLatin1(value.data()));
}

void AddDirectories(const ExifData& data, MetadataText& text) {
    for (int i = 0; i < EXIF_IFD_COUNT; ++i) {
        ExifContent* directory = data.ifd[i];
        if (directory == nullptr || directory->count == 0) continue;
        text.AddLine(std::string("IFD ") + qt::g_exif->ifd_get_name(static_cast<ExifIfd>(i)));
        qt::g_exif->content_foreach_entry(directory, AddEntry, &text);
    }
    if (data.data != nullptr && data.size > 0)
        text.AddLine("Thumbnail (bytes): " + std::to_string(data.size));
}

} // namespace

void AddExifDump(std::span<const std::byte> jpeg, MetadataText& text) {
    const Section section = SecondSection(jpeg);
    if (section.marker == kStartOfImage || section.marker == kEndOfImage) return;
    if (section.marker != kExifMarker) {
        text.AddLine("  Size: " + std::to_string(section.size));
        text.AddLine("  Unknown content.");
        return;
    }
    if (!qt::g_exif.Load()) return;
    const std::unique_ptr<ExifData, ExifDataFreer> data(
        qt::g_exif->data_new_from_data(reinterpret_cast<const unsigned char*>(section.content.data()),
                                       static_cast<unsigned>(section.content.size())));
    if (data != nullptr) AddDirectories(*data, text);
}

} // namespace corvane
