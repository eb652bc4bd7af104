// Interface of the module that reads IPTC records and XMP packets. It stands apart because few images carry
// them, and because its library takes most of a millisecond to load.
#pragma once

#include <cstddef>

extern "C" {

/// Takes one value of a property, as UTF-8 or in the record's own encoding. `key` is the library's name of
/// the property ("Iptc.Application2.Headline", "Xmp.dc.title"), `text` is not terminated. Must not throw.
using MetadataReceiver = void (*)(void* context, const char* key, const char* text, std::size_t size);

struct MetadataModule {
    /// Hand over all values in the order of the block; what can't be read gives none.
    void (*read_iptc)(const void* record, std::size_t size, MetadataReceiver receiver, void* context);
    void (*read_xmp)(const char* packet, std::size_t size, MetadataReceiver receiver, void* context);
};
}
