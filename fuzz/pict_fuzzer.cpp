#include "platform/quicktime/image_codecs/codec.h"

#include <cstdlib>

// Any data is a picture or not; one that is has pixels of the size that its header tells. Large frames are
// left out, as they only take time to clear.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    constexpr int kLargest = 400; // pixels either way
    const auto source = qt::MemorySource(std::as_bytes(std::span(bytes, size)));
    qt::ImageFacts facts;
    if (qt::kPictCodec.read_facts(*source, facts) != noErr) return 0;
    const ImageDescription& description = facts.description;
    if (description.width > kLargest || description.height > kLargest) return 0;
    qt::PixelImage image;
    if (qt::kPictCodec.decode(*source, 1, image) != noErr) return 0;
    if (image.width() != description.width || image.height() != description.height) std::abort();
    return 0;
}
