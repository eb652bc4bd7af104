#include "platform/quicktime/graphics_exporter.h"

#include <algorithm>
#include <array>

namespace qt {
namespace {

constexpr std::array<OSType, 2> kFileTypes = {Code("JPEG"), Code("jpeg")};

/// Encodes nothing yet: it stands for the encoder when others ask whether there is one.
class GraphicsExporter final : public Component {};

} // namespace

std::unique_ptr<Component> OpenGraphicsExporter(OSType file_type) {
    const bool known =
        file_type == kAnySubtype || std::ranges::find(kFileTypes, file_type) != kFileTypes.end();
    return known ? std::make_unique<GraphicsExporter>() : nullptr;
}

} // namespace qt
