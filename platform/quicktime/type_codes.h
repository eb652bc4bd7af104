// Four-character codes as text and as bytes.
#pragma once

#include "platform/quicktime/types.h"

#include <array>
#include <string>
#include <string_view>

namespace qt {

/// The first four characters, with blanks for those that are missing.
constexpr OSType CodeOfText(std::string_view text) {
    OSType code = 0;
    for (std::size_t i = 0; i < 4; ++i)
        code = code << 8 | static_cast<unsigned char>(i < text.size() ? text[i] : ' ');
    return code;
}

/// As atoms hold it: first character first.
constexpr std::array<std::byte, 4> CodeBytes(OSType code) {
    return {static_cast<std::byte>(code >> 24), static_cast<std::byte>(code >> 16),
            static_cast<std::byte>(code >> 8), static_cast<std::byte>(code)};
}

inline std::string TextOfCode(OSType code) {
    std::string text;
    for (const std::byte byte : CodeBytes(code)) text += static_cast<char>(byte);
    return text;
}

} // namespace qt
