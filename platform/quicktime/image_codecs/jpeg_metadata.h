#pragma once

#include "platform/quicktime/image_codecs/codec.h"

namespace qt {

/// The metadata operation of the JPEG codec: the comments, then the texts of the IPTC record and the XMP
/// packet.
ComponentResult ReadJpegMetadata(DataSource& source, std::vector<MetadataItem>& items);

} // namespace qt
