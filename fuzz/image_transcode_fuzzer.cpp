#include "fuzz/fuzz_target.h"
#include "platform/quicktime/image_codecs/codec.h"
#include "platform/quicktime/image_exporters/exporter.h"

#include <algorithm>

// Compressed data of any image, passed on by every exporter that does so: behind what is there already, and
// as an image of its format.
void Fuzz(std::string_view input) {
    constexpr int kLargest = 720; // pixels either way, as all MacPaint images are high: more only takes time
    const auto bytes = std::as_bytes(std::span(input));
    const auto source = qt::MemorySource(bytes);
    const auto* codec = qt::FindImageCodec(bytes.first(std::min(bytes.size(), qt::kSniffedBytes)));
    qt::ImageFacts facts;
    if (codec == nullptr || codec->read_facts(*source, facts) != noErr) return;
    if (std::max(facts.description.width, facts.description.height) > kLargest) return;
    qt::ExportSettings with_scans;
    with_scans.compression_method = 1;
    qt::ExportSettings with_resolution;
    with_resolution.horizontal_resolution = with_resolution.vertical_resolution = 301 << 16;
    for (const qt::ImageExporter* exporter : qt::ImageExporters()) {
        if (exporter->transcode == nullptr) continue;
        for (const qt::ExportSettings& settings : {qt::ExportSettings(), with_scans, with_resolution}) {
            qt::EncodedBytes out(1);
            const bool passed = exporter->transcode(*source, facts.description, settings, out);
            Require(passed || out.size() == 1);
            if (!passed) continue;
            qt::ImageFacts own;
            const auto result = qt::MemorySource(std::span(out).subspan(1));
            Require(qt::FindImageCodec(exporter->types.front())->read_facts(*result, own) == noErr);
        }
    }
}
