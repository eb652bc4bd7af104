// The exporter behind a GraphicsExportComponent.
#pragma once

#include "platform/quicktime/graphics_exporter.h"
#include "platform/quicktime/image_exporters/exporter.h"

namespace qt {

class GraphicsExporter final : public Component {
public:
    explicit GraphicsExporter(const ImageExporter& own_format) : format(own_format) {}

    const ImageExporter& format;
    ExportSettings settings;
    GraphicsImportComponent input = nullptr; ///< null: the port is the input
    GWorldPtr input_port = nullptr;
    Handle output = nullptr;
    bool dont_recompress = false;
};

} // namespace qt
