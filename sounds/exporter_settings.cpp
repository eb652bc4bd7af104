#include "sounds/exporter_settings.h"

#include "plugin/errors.h"

namespace corvane {

std::int32_t AskForExporterSettings(MovieExportComponent exporter, Movie sound) {
    bool cancelled = false;
    const std::int32_t code = MovieExportDoUserDialog(exporter, sound, &cancelled);
    return code == 0 && cancelled ? kErrorUserCancelled : code;
}

SettingsBytes ExporterSettingsAsHex(MovieExportComponent exporter) {
    QTAtomContainer container = nullptr;
    if (const std::int32_t code = MovieExportGetSettingsAsAtomContainer(exporter, &container); code != 0)
        return {code, {}};
    const qt::MemoryHandle settings(container);
    return SettingsToHexBlock({*container, static_cast<std::size_t>(GetHandleSize(container))});
}

std::int32_t SetExporterSettings(MovieExportComponent exporter, std::string_view settings) {
    Handle block = nullptr;
    if (const OSErr code = PtrToHand(settings.data(), &block, static_cast<Size>(settings.size()));
        code != noErr)
        return code;
    const qt::MemoryHandle owned(block);
    return MovieExportSetSettingsFromAtomContainer(exporter, block);
}

} // namespace corvane
