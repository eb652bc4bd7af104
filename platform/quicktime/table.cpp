#include "platform/quicktime/components.h"
#include "platform/quicktime/graphics_exporter.h"
#include "platform/quicktime/graphics_importer.h"
#include "platform/quicktime/movie_exporters/movie_exporter.h"

#include <array>

namespace qt {
namespace {

constexpr std::array<ComponentKind, 3> kKinds = {{
    {kGraphicsImporter, OpenGraphicsImporter},
    {kGraphicsExporter, OpenGraphicsExporter},
    {kMovieExporter, OpenMovieExporter},
}};

} // namespace

std::span<const ComponentKind> ComponentKinds() {
    return kKinds;
}

} // namespace qt
