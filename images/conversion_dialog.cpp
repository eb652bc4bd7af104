#include "images/functions.h"
#include "images/streams.h"
#include "platform/quicktime/graphics_exporter.h"
#include "plugin/results.h"

#include <string>

namespace corvane {
namespace {

/// The settings after the dialog, those at its opening when it was cancelled; empty when there is no encoder.
std::string AskSettings(OSType type) {
    std::string text;
    ComponentInstance opened = nullptr;
    if (OpenADefaultComponent(qt::kGraphicsExporter, type, &opened) != noErr) return text;
    const qt::OpenComponent exporter(opened);
    GraphicsExportRequestSettings(exporter.get());
    GraphicsExportGetSettingsAsText(exporter.get(), &text);
    return text;
}

} // namespace

FM_Error ConversionDialog(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    if (!CheckParameterCount(parameters, 1)) {
        const std::optional<std::uint32_t> type = ParseImageTypeCode(Host(FM_DataVect_At, &parameters, 0));
        if (type) SetResultBufferText(AskSettings(*type));
    }
    FinishResult(result);
    return kFM_ErrorNone;
}

} // namespace corvane
