#include "platform/quicktime/image_exporters/exporter.h"

#include <algorithm>
#include <array>

namespace qt {
namespace {

// In the order of lists.
constexpr std::array kExporters = {
    &kBmpExporter,            //
    &kJpegExporter,           //
    &kJpeg2000Exporter,       //
    &kMacPaintExporter,       //
    &kPhotoshopExporter,      //
    &kPictExporter,           //
    &kPngExporter,            //
    &kQuickTimeImageExporter, //
    &kSgiExporter,            //
    &kTgaExporter,            //
    &kTiffExporter,           //
    &kGifExporter,            //
};

} // namespace

std::span<const ImageExporter* const> ImageExporters() {
    return kExporters;
}

const ImageExporter* FindImageExporter(OSType type) {
    const auto* found = std::ranges::find_if(kExporters, [&](const ImageExporter* exporter) {
        return std::ranges::find(exporter->types, type) != exporter->types.end();
    });
    return found != kExporters.end() ? *found : nullptr;
}

} // namespace qt
