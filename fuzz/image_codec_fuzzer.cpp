#include "fuzz/fuzz_target.h"
#include "platform/quicktime/image_codecs/codec.h"

namespace {

constexpr int kLargest = 512; ///< pixels either way: more only takes time

bool IsKnown(ComponentResult code) {
    return code == noErr || code == codecBadDataErr || code == codecSizeErr || code == paramErr ||
           code == memFullErr;
}

void Decode(const qt::ImageCodec& codec, qt::DataSource& source) {
    qt::ImageFacts facts;
    const ComponentResult described = codec.read_facts(source, facts);
    Require(IsKnown(described));
    if (described != noErr || facts.description.width > kLargest || facts.description.height > kLargest)
        return;
    qt::PixelImage first;
    const ComponentResult decoded = codec.decode(source, 1, first);
    Require(IsKnown(decoded));
    const bool fits = first.width() == facts.description.width && first.height() == facts.description.height;
    Require(decoded != noErr || fits);
    qt::PixelImage last;
    Require(IsKnown(codec.decode(source, facts.image_count, last)));
}

} // namespace

// Any data gives pixels or a code, and pixels of the size that its header tells. Built for each codec that
// reads bytes itself, and once for all codecs in turn.
void Fuzz(std::string_view input) {
    const auto source = qt::MemorySource(std::as_bytes(std::span(input)));
#ifdef FUZZED_CODEC
    Decode(qt::FUZZED_CODEC, *source);
#else
    for (const qt::ImageCodec* codec : qt::ImageCodecs()) Decode(*codec, *source);
#endif
}
