#include "fuzz/fuzz_target.h"
#include "platform/quicktime/image_codecs/codec.h"

#include <array>

namespace {

constexpr int kLargest = 720; ///< pixels either way, as all MacPaint images are high: more only takes time

bool IsKnown(ComponentResult code) {
    return code == noErr || code == codecBadDataErr || code == codecSizeErr || code == paramErr ||
           code == memFullErr;
}

/// Parts from the first pixel, from the middle and to the last one, each coarser than the one before.
void DecodeParts(const qt::ImageCodec& codec, qt::DataSource& source, std::int16_t width,
                 std::int16_t height) {
    const auto half = [](std::int16_t length) { return static_cast<std::int16_t>(length / 2); };
    std::int32_t reduction = 1;
    for (const Rect& part : {Rect{0, 0, height, 1}, Rect{half(height), half(width), height, width},
                             Rect{0, half(width), 1, width}, Rect{0, 0, height, width}}) {
        qt::DecodedPart out;
        const ComponentResult code = codec.decode_part(source, 1, part, reduction, out);
        Require(IsKnown(code));
        const bool covers = out.left <= part.left && out.top <= part.top &&
                            out.left + out.image.width() * out.reduction >= part.right &&
                            out.top + out.image.height() * out.reduction >= part.bottom;
        Require(code != noErr || (covers && out.reduction <= reduction));
        reduction *= 2;
    }
}

void Decode(const qt::ImageCodec& codec, qt::DataSource& source) {
    qt::ImageFacts facts;
    const ComponentResult described = codec.read_facts(source, facts);
    Require(IsKnown(described));
    const auto [width, height] = std::pair(facts.description.width, facts.description.height);
    if (described != noErr || width > kLargest || height > kLargest) return;
    qt::PixelImage first;
    const ComponentResult decoded = codec.decode(source, 1, first);
    Require(IsKnown(decoded));
    Require(decoded != noErr || (first.width() == width && first.height() == height));
    qt::PixelImage last;
    Require(IsKnown(codec.decode(source, facts.image_count, last)));
    if (codec.decode_part != nullptr) DecodeParts(codec, source, width, height);
}

} // namespace

// Any data gives pixels or a code, and pixels of the size that its header tells. Built for each codec that
// reads bytes itself, and once for all codecs in turn.
void Fuzz(std::string_view input) {
    const auto source = qt::MemorySource(std::as_bytes(std::span(input)));
#ifdef FUZZED_CODEC
    const std::array codecs = {&qt::FUZZED_CODEC};
#else
    const std::span<const qt::ImageCodec* const> codecs = qt::ImageCodecs();
#endif
    for (const qt::ImageCodec* codec : codecs) Decode(*codec, *source);
}
