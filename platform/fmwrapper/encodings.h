#pragma once

#include "platform/fmwrapper/fmwrapper.h"

#include <string>
#include <string_view>

namespace fm {

std::u16string Decode(std::string_view bytes, FM_Encoding encoding);
/// Characters that the encoding lacks become "?".
std::string Encode(std::u16string_view units, FM_Encoding encoding);

} // namespace fm
