#include "platform/quicktime/modules/metadata_module.h"

#include <exiv2/exiv2.hpp>

#include <limits>
#include <string>

namespace {

/// The library prints its warnings unless it is told not to.
void BeQuiet() {
    Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
}

/// How many texts a property has. The library counts the characters of what is no array.
template <class Property>
long CountOf(const Property& property) {
    switch (property.typeId()) {
    case Exiv2::xmpAlt:
    case Exiv2::xmpBag:
    case Exiv2::xmpSeq: return property.count();
    default: return 1;
    }
}

template <class Properties>
void HandOver(const Properties& properties, MetadataReceiver receiver, void* context) {
    for (const auto& property : properties) {
        for (long i = 0; i < CountOf(property); ++i) {
            const std::string text = property.toString(i);
            receiver(context, property.key().c_str(), text.data(), text.size());
        }
    }
}

void ReadIptc(const void* record, std::size_t size, MetadataReceiver receiver, void* context) {
    if (size > std::numeric_limits<std::uint32_t>::max()) return;
    BeQuiet();
    try {
        Exiv2::IptcData data;
        Exiv2::IptcParser::decode(data, static_cast<const Exiv2::byte*>(record),
                                  static_cast<std::uint32_t>(size));
        HandOver(data, receiver, context);
    } catch (const std::exception&) {
        return; // a broken record has no texts
    }
}

void ReadXmp(const char* packet, std::size_t size, MetadataReceiver receiver, void* context) {
    BeQuiet();
    try {
        Exiv2::XmpData data;
        if (Exiv2::XmpParser::decode(data, std::string(packet, size)) == 0) HandOver(data, receiver, context);
        Exiv2::XmpProperties::unregisterNs(); // or the library keeps those of every packet
    } catch (const std::exception&) {
        return;
    }
}

} // namespace

extern "C" __attribute__((visibility("default"))) const void* corvane_module() {
    static const MetadataModule module = {ReadIptc, ReadXmp};
    return &module;
}
