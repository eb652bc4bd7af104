#pragma once

#include "platform/quicktime/components.h"

namespace qt {

/// An exporter for a file type; null when no encoder writes it.
std::unique_ptr<Component> OpenGraphicsExporter(OSType file_type);

} // namespace qt
