#include "platform/quicktime/image_exporters/exporter.h"

#include <algorithm>
#include <array>

namespace qt {
namespace {

// In the order of lists.
constexpr std::array kExporters = {
    &kJpegExporter,           //
    &kMacPaintExporter,       //
    &kPhotoshopExporter,      //
    &kPictExporter,           //
    &kPngExporter,            //
    &kQuickTimeImageExporter, //
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
