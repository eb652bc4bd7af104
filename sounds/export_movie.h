#pragma once

#include "files/file_spec.h"
#include "platform/quicktime/movie_exporters/movie_exporter.h"

#include <cstdint>

namespace corvane {

/// Writes a whole movie through an exporter, in place of a file that is there, and shows the progress. The
/// media layer's code; a failure leaves no file.
std::int32_t ExportMovie(MovieExportComponent exporter, Movie movie, const XFileSpec& file);

} // namespace corvane
