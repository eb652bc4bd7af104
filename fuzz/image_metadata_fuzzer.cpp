#include "fuzz/fuzz_target.h"
#include "images/exif_dump.h"
#include "platform/quicktime/image_codecs/codec.h"

// Texts of images: what the codecs find in their blocks, and the dump of EXIF entries.
void Fuzz(std::string_view input) {
    const auto bytes = std::as_bytes(std::span(input));
    const auto source = qt::MemorySource(bytes);
    std::vector<qt::MetadataItem> items;
    const qt::ImageCodec* codec = qt::FindImageCodec(bytes.first(std::min(bytes.size(), qt::kSniffedBytes)));
    if (codec != nullptr && codec->read_metadata != nullptr) codec->read_metadata(*source, items);
    for (const qt::MetadataItem& item : items) Require(item.type >> 24 == 0xA9 && !item.text.empty());
    corvane::MetadataText text;
    corvane::AddExifDump(bytes, text);
    Require(text.Utf8().size() <= std::size_t{2} * 1999);
}
