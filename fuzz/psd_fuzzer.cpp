#include "platform/quicktime/image_codecs/codec.h"

#include <cstdlib>

// Any data is a document or not; one that is has pixels of the size that its header tells.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const auto source = qt::MemorySource(std::as_bytes(std::span(bytes, size)));
    qt::ImageFacts facts;
    const ComponentResult described = qt::kPhotoshopCodec.read_facts(*source, facts);
    qt::PixelImage image;
    if (qt::kPhotoshopCodec.decode(*source, 1, image) != noErr) return 0;
    if (described != noErr || image.width() != facts.description.width) std::abort();
    return 0;
}
