#include "fuzz/fuzz_target.h"
#include "platform/quicktime/image_codecs/codec.h"
#include "platform/quicktime/image_exporters/exporter.h"

#include <array>

namespace {

struct Request {
    const qt::ImageExporter* exporter = nullptr;
    qt::ExportSettings settings;
    qt::PixelImage image;
};

/// What the first bytes ask for; the others are the pixels, over and over.
Request RequestOf(std::string_view input) {
    const auto header = Take<std::array<std::uint8_t, 10>>(input);
    constexpr std::array kDepths = {1, 2, 4, 8, 16, 24, 32, 33, 34, 36, 40};
    constexpr std::array kMethods = {0, 1, 5, 8, 32'773};
    Request request;
    const auto exporters = qt::ImageExporters();
    request.exporter = exporters[header[0] % exporters.size()];
    if (header[1] < 200) request.settings.depth = kDepths[header[1] % kDepths.size()];
    if (header[2] < 200) request.settings.quality = header[2] % 65 * 16;
    if (header[3] < 100) request.settings.compression_method = kMethods[header[3] % kMethods.size()];
    if (header[4] < 40) request.settings.target_size = header[4] * 32;
    if (header[5] < 100) request.settings.vertical_resolution = header[5] << 20;
    Require(request.image.Allocate(header[6] % 80 + 1, header[7] % 80 + 1) == noErr);
    request.image.has_alpha = (header[8] & 1) != 0;
    request.image.is_grey = (header[8] & 2) != 0;
    std::size_t at = 0;
    const auto byte = [&] {
        return input.empty() ? 0U : static_cast<std::uint8_t>(input[at++ % input.size()]);
    };
    for (std::int32_t y = 0; y < request.image.height(); ++y) {
        for (std::int32_t x = 0; x < request.image.width(); ++x) {
            const std::uint32_t first = byte();
            const std::uint32_t alpha = request.image.has_alpha ? byte() : 255;
            request.image.Row(y)[x] = request.image.is_grey ? qt::Pixel(first, first, first, alpha)
                                                            : qt::Pixel(first, byte(), byte(), alpha);
        }
    }
    return request;
}

} // namespace

// Any pixels with any settings become an image of the same size that its own codec reads.
void Fuzz(std::string_view input) {
    const Request request = RequestOf(input);
    qt::EncodedBytes out(1);
    Require(request.exporter->encode(request.image, request.settings, out) == noErr);
    const qt::ImageCodec* codec = qt::FindImageCodec(request.exporter->types.front());
    const auto source = qt::MemorySource(std::span(out).subspan(1));
    qt::PixelImage read;
    Require(codec != nullptr && codec->decode(*source, 1, read) == noErr);
    const bool has_own_size = request.exporter == &qt::kMacPaintExporter;
    const bool is_same = read.width() == request.image.width() && read.height() == request.image.height();
    Require(is_same || has_own_size);
}
