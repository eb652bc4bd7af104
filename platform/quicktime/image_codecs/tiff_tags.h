// What a TIFF file's directories ask for, before the library reads them.
#pragma once

#include "platform/quicktime/data_source.h"

namespace qt {

/// False when the values of some directory's tags add up to much more than the file: the library keeps them
/// all in memory, and many tags may name the same bytes. The first thousand directories are looked at, and a
/// million tags. Classic and BigTIFF, of both byte orders (TIFF 6.0, section 2).
bool HasBearableTiffTags(DataSource& source);

} // namespace qt
