#pragma once

#include "platform/quicktime/image_codecs/codec.h"

namespace qt {

/// The metadata operation of the PNG codec: texts under the keywords that the format registers, in the order
/// of the file, then those of an XMP packet.
ComponentResult ReadPngMetadata(DataSource& source, std::vector<MetadataItem>& items);

} // namespace qt
