// An exporter's settings as the text that scripts keep them in (see plugin/hex_blocks.h).
#pragma once

#include "platform/quicktime/movie_exporters/movie_exporter.h"
#include "plugin/hex_blocks.h"

#include <cstdint>
#include <string_view>

namespace corvane {

/// Shows the exporter's settings dialog, in which `sound` can be heard. -128 on Cancel.
std::int32_t AskForExporterSettings(MovieExportComponent exporter, Movie sound);

/// The settings as a hex block; code of the exporter or of the block.
SettingsBytes ExporterSettingsAsHex(MovieExportComponent exporter);

/// Takes settings that ExporterSettingsAsHex gave, once out of their block.
std::int32_t SetExporterSettings(MovieExportComponent exporter, std::string_view settings);

} // namespace corvane
