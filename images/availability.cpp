#include "images/availability.h"

#include "platform/quicktime/components.h"
#include "platform/quicktime/movie_toolbox.h"

namespace corvane {
namespace {

bool g_images_available = false;

} // namespace

void DecideImagesAvailable() {
    constexpr std::int32_t kNeededVersion = 0x0400'0000;
    std::int32_t version = 0;
    g_images_available = false;
    if (Gestalt(qt::Code("qtim"), &version) != noErr || version < kNeededVersion) return;
    ComponentInstance exporter = nullptr;
    if (OpenADefaultComponent(qt::kGraphicsExporter, qt::Code("JPEG"), &exporter) != noErr) return;
    CloseComponent(exporter);
    g_images_available = true;
}

bool ImagesAvailable() {
    return g_images_available;
}

} // namespace corvane
