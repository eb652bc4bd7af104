#include "images/image_settings.h"

namespace corvane {
namespace {

ConversionSettings g_conversion;
PreviewSettings g_preview;

} // namespace

ConversionSettings& CurrentConversionSettings() {
    return g_conversion;
}

PreviewSettings& CurrentPreviewSettings() {
    return g_preview;
}

void ResetImageSettings() {
    g_conversion = {};
    g_preview = {};
}

} // namespace corvane
