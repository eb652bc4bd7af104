#include "platform/quicktime/graphics_exporter_state.h"

#include <algorithm>
#include <new>

namespace qt {
namespace {

/// Hands the exporter to `act`.
template <class Act>
ComponentResult WithExporter(GraphicsExportComponent instance, Act act) {
    auto* exporter = dynamic_cast<GraphicsExporter*>(instance);
    if (exporter == nullptr) return kBadComponentInstance;
    return act(*exporter);
}

ComponentResult EncodePort(const GraphicsExporter& exporter, EncodedBytes& out) {
    const GWorld& port = *exporter.input_port;
    if (port.base == nullptr) return exporter.format.encode(port.pixels, exporter.settings, out);
    PixelImage shown;
    const auto code = CopyShownPixels(port, shown);
    return code == noErr ? exporter.format.encode(shown, exporter.settings, out) : code;
}

/// Whether the input's compressed data, which may be a part of its file, could be passed on.
bool PassOn(const GraphicsExporter& exporter, const ImageDescription& description, ExportSettings settings,
            EncodedBytes& out) {
    if (!exporter.dont_recompress || exporter.format.transcode == nullptr) return false;
    DataSource* source = UnchangedSource(exporter.input);
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    if (source == nullptr || GraphicsImportGetDataOffsetAndSize(exporter.input, &offset, &size) != noErr)
        return false;
    if (exporter.format.methods.empty()) settings.compression_method.reset();
    if (!exporter.format.has_target_size) settings.target_size.reset();
    PartSource data(*source, offset, size);
    return exporter.format.transcode(data, description, settings, out);
}

ComponentResult EncodeDrawing(const GraphicsExporter& exporter, EncodedBytes& out) {
    ImageDescription description;
    const auto description_code = GraphicsImportGetImageDescription(exporter.input, &description);
    if (description_code != noErr) return description_code;
    ExportSettings settings = exporter.settings;
    if (!settings.horizontal_resolution) {
        settings.horizontal_resolution = description.hRes;
        settings.vertical_resolution = description.vRes;
    }
    if (PassOn(exporter, description, settings, out)) return noErr;
    PixelImage image;
    if (const auto code = DrawImporter(exporter.input, image); code != noErr) return code;
    return exporter.format.encode(image, settings, out);
}

} // namespace

std::unique_ptr<Component> OpenGraphicsExporter(OSType file_type) {
    const ImageExporter* format =
        file_type == kAnySubtype ? ImageExporters().front() : FindImageExporter(file_type);
    return format != nullptr ? std::make_unique<GraphicsExporter>(*format) : nullptr;
}

} // namespace qt

ComponentResult GraphicsExportSetInputGraphicsImporter(GraphicsExportComponent instance,
                                                       GraphicsImportComponent importer) {
    return qt::WithExporter(instance, [&](qt::GraphicsExporter& exporter) {
        exporter.input = importer;
        exporter.input_port = nullptr;
        return noErr;
    });
}

ComponentResult GraphicsExportSetInputGWorld(GraphicsExportComponent instance, GWorldPtr port) {
    return qt::WithExporter(instance, [&](qt::GraphicsExporter& exporter) -> ComponentResult {
        if (port == nullptr || (port->pixels.width() == 0 && port->base == nullptr)) return paramErr;
        exporter.input = nullptr;
        exporter.input_port = port;
        return noErr;
    });
}

ComponentResult GraphicsExportSetOutputHandle(GraphicsExportComponent instance, Handle output) {
    return qt::WithExporter(instance, [&](qt::GraphicsExporter& exporter) {
        exporter.output = output;
        return noErr;
    });
}

ComponentResult GraphicsExportSetDepth(GraphicsExportComponent instance, std::int32_t depth) {
    constexpr std::array<std::int32_t, 11> kDepths = {1, 2, 4, 8, 16, 24, 32, 33, 34, 36, 40};
    return qt::WithExporter(instance, [&](qt::GraphicsExporter& exporter) {
        if (std::ranges::find(kDepths, depth) == kDepths.end()) return paramErr;
        exporter.settings.depth = depth;
        return noErr;
    });
}

ComponentResult GraphicsExportSetResolution(GraphicsExportComponent instance, Fixed horizontal,
                                            Fixed vertical) {
    return qt::WithExporter(instance, [&](qt::GraphicsExporter& exporter) {
        if (horizontal <= 0) return paramErr;
        exporter.settings.horizontal_resolution = horizontal;
        exporter.settings.vertical_resolution = vertical > 0 ? vertical : horizontal;
        return noErr;
    });
}

ComponentResult GraphicsExportSetTargetDataSize(GraphicsExportComponent instance, std::uint32_t bytes) {
    return qt::WithExporter(instance, [&](qt::GraphicsExporter& exporter) {
        exporter.settings.target_size = bytes;
        return noErr;
    });
}

ComponentResult GraphicsExportSetCompressionQuality(GraphicsExportComponent instance, std::int32_t quality) {
    return qt::WithExporter(instance, [&](qt::GraphicsExporter& exporter) {
        exporter.settings.quality = std::clamp(quality, 0, 1024);
        return noErr;
    });
}

ComponentResult GraphicsExportSetCompressionMethod(GraphicsExportComponent instance, std::int32_t method) {
    return qt::WithExporter(instance, [&](qt::GraphicsExporter& exporter) {
        exporter.settings.compression_method = method;
        return noErr;
    });
}

ComponentResult GraphicsExportSetDontRecompress(GraphicsExportComponent instance, bool dont) {
    return qt::WithExporter(instance, [&](qt::GraphicsExporter& exporter) {
        exporter.dont_recompress = dont;
        return noErr;
    });
}

ComponentResult GraphicsExportDoExport(GraphicsExportComponent instance, std::uint64_t* written) {
    return qt::WithExporter(instance, [&](qt::GraphicsExporter& exporter) -> ComponentResult {
        const bool has_port = exporter.input_port != nullptr;
        if ((exporter.input == nullptr && !has_port) || exporter.output == nullptr) return paramErr;
        try {
            qt::EncodedBytes bytes;
            const auto code = has_port ? qt::EncodePort(exporter, bytes) : qt::EncodeDrawing(exporter, bytes);
            if (code != noErr) return code;
            *written = bytes.size();
            return qt::MoveToHandle(std::move(bytes), exporter.output);
        } catch (const std::bad_alloc&) {
            return memFullErr;
        }
    });
}
