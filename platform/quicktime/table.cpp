#include "platform/quicktime/components.h"
#include "platform/quicktime/graphics_exporter.h"
#include "platform/quicktime/graphics_importer.h"

#include <array>

namespace qt {
namespace {

constexpr std::array<ComponentKind, 2> kKinds = {{
    {kGraphicsImporter, OpenGraphicsImporter},
    {kGraphicsExporter, OpenGraphicsExporter},
}};

} // namespace

std::span<const ComponentKind> ComponentKinds() {
    return kKinds;
}

} // namespace qt
