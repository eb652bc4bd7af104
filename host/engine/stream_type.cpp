#include "host/engine/stream_type.h"

namespace host {

std::optional<std::uint32_t> StreamType(std::string_view text) {
    if (text.size() != 4) return std::nullopt;
    std::uint32_t type = 0;
    for (const char character : text) type = (type << 8) | static_cast<unsigned char>(character);
    return type;
}

std::string StreamTypeText(std::uint32_t type) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) text.push_back(static_cast<char>((type >> shift) & 0xFF));
    return text;
}

} // namespace host
