#include "platform/quicktime/components.h"
#include "platform/quicktime/graphics_exporter.h"
#include "platform/quicktime/graphics_importer.h"
#include "platform/quicktime/movie_exporters/movie_exporter.h"
#include "platform/quicktime/sequence_grabber/sequence_grabber.h"

#include <array>

namespace qt {
namespace {

constexpr std::array<ComponentKind, 4> kKinds = {{
    {kGraphicsImporter, OpenGraphicsImporter},
    {kGraphicsExporter, OpenGraphicsExporter},
    {kMovieExporter, OpenMovieExporter},
    {kSequenceGrabber, OpenSequenceGrabber},
}};

} // namespace

std::span<const ComponentKind> ComponentKinds() {
    return kKinds;
}

} // namespace qt
