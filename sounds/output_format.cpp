#include "sounds/output_format.h"

#include "plugin/hex_blocks.h"

namespace corvane {

std::optional<OSType> ReadOutputFormat(std::string_view text) {
    OSType format = 0;
    if (text.size() == 4) {
        for (const char character : text) format = format << 8 | static_cast<unsigned char>(character);
        return format;
    }
    if (text.size() != 8) return std::nullopt;
    for (const char digit : text) {
        const auto value = HexDigitValue(digit);
        if (!value) return std::nullopt;
        format = format << 4 | *value;
    }
    return format;
}

} // namespace corvane
