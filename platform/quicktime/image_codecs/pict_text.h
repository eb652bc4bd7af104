// Text of pictures, in one plain font: the fonts that they name are not here.
#pragma once

#include "platform/quicktime/image_codecs/pict_region.h"

#include <string_view>

namespace qt {

/// The dots of a text in Mac Roman that begins at a place on its base line; what is not ASCII is a box.
Region TextRegion(std::string_view text, std::int32_t x, std::int32_t base_line, std::int32_t size);

} // namespace qt
