// Passing on compressed data as it is.
#pragma once

#include "platform/quicktime/image_codecs/codec.h"
#include "platform/quicktime/image_exporters/exporter.h"

namespace qt {

/// Appends the whole source; false, with `out` as it was, when it can't be read.
bool AppendSource(DataSource& source, EncodedBytes& out);

/// Appends the source when it is a file of the codec's format that already is what is asked for: a single
/// image of that depth and, within half a dot per inch, that resolution, no larger than the largest size, no
/// method being asked for. Else false. What the file itself says counts, and its pixels are not decoded.
bool PassOnUnchanged(const ImageCodec& codec, DataSource& source, const ExportSettings& settings,
                     EncodedBytes& out);

/// The same as an exporter's `transcode`.
template <const ImageCodec& codec>
bool PassOnUnchanged(DataSource& source, const ImageDescription& /*description*/,
                     const ExportSettings& settings, EncodedBytes& out) {
    return PassOnUnchanged(codec, source, settings, out);
}

} // namespace qt
