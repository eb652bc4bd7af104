#pragma once

#include "platform/quicktime/image_exporters/exporter.h"

namespace qt {

/// The transcode operation of the JPEG exporter: the data as it is but for the resolution that its headers
/// state, or, where another order of scans is asked for, its coefficients written anew with all markers,
/// which loses nothing either. Refuses another depth, and a target size that the data exceeds.
bool TranscodeJpeg(DataSource& source, const ImageDescription& description, const ExportSettings& settings,
                   EncodedBytes& out);

} // namespace qt
