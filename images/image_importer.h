// Opening an image, whichever way a parameter gives it.
#pragma once

#include "platform/quicktime/graphics_importer.h"
#include "plugin/host_data.h"

namespace corvane {

/// An opened graphics importer, and the stream data that it reads when the image was embedded.
class ImageImporter {
public:
    ImageImporter() = default;
    explicit ImageImporter(GraphicsImportComponent component, qt::MemoryHandle data = {})
        : data_(std::move(data)), component_(component) {}

    [[nodiscard]] GraphicsImportComponent get() const { return component_.get(); }
    explicit operator bool() const { return component_ != nullptr; }

private:
    qt::MemoryHandle data_; // outlives the component, which reads it in place
    qt::OpenComponent component_;
};

/// Opens an importer on a container's main image, on the file that a path parameter names, or on an address
/// that begins with "http://". Empty when there is no image and that is reported.
ImageImporter OpenImageImporter(const FM_Data* parameter);

} // namespace corvane
