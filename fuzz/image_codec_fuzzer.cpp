#include "platform/quicktime/image_codecs/codec.h"

#include <cstdlib>

namespace {

constexpr int kLargest = 512; ///< pixels either way: more only takes time

bool IsKnown(ComponentResult code) {
    return code == noErr || code == codecBadDataErr || code == codecSizeErr || code == paramErr ||
           code == memFullErr;
}

void Decode(const qt::ImageCodec& codec, qt::DataSource& source) {
    qt::ImageFacts facts;
    const ComponentResult described = codec.read_facts(source, facts);
    if (!IsKnown(described)) std::abort();
    if (described != noErr || facts.description.width > kLargest || facts.description.height > kLargest)
        return;
    qt::PixelImage first;
    const ComponentResult decoded = codec.decode(source, 1, first);
    if (!IsKnown(decoded)) std::abort();
    const bool fits = first.width() == facts.description.width && first.height() == facts.description.height;
    if (decoded == noErr && !fits) std::abort();
    qt::PixelImage last;
    if (!IsKnown(codec.decode(source, facts.image_count, last))) std::abort();
}

} // namespace

// Any data gives pixels or a code, and pixels of the size that its header tells. Built for each codec that
// reads bytes itself, and once for all codecs in turn.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const auto source = qt::MemorySource(std::as_bytes(std::span(bytes, size)));
#ifdef FUZZED_CODEC
    Decode(qt::FUZZED_CODEC, *source);
#else
    for (const qt::ImageCodec* codec : qt::ImageCodecs()) Decode(*codec, *source);
#endif
    return 0;
}
