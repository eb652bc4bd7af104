#include "platform/quicktime/movie_exporters/movie_exporter.h"

#include <array>

namespace qt {
namespace {

constexpr std::array<MovieExporterRow, 1> kExporters = {{
    {Code("WAVE"), Code("soun"), "Wave", "Exports a QuickTime Movie to Wave.", MakeWaveExporter},
}};

} // namespace

std::span<const MovieExporterRow> MovieExporters() {
    return kExporters;
}

} // namespace qt
