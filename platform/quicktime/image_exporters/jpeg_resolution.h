#pragma once

#include "platform/quicktime/image_exporters/exporter.h"

namespace qt {

/// States another resolution in JPEG data, which is what `out` holds from `begin` on: in its JFIF header, its
/// EXIF block and Photoshop's resources, where it has them. When neither of the first two states it then, a
/// JFIF header is added, which makes readers take three components for brightness and colour differences:
/// `takes_jfif` says whether they are that. All else stays as it is. False when the resolution can't be
/// stated so; the data is worth nothing then.
bool RestateJpegResolution(const ExportSettings& settings, bool takes_jfif, std::size_t begin,
                           EncodedBytes& out);

} // namespace qt
