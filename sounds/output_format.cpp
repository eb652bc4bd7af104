#include "sounds/output_format.h"

#include "platform/quicktime/type_codes.h"
#include "platform/text/utf.h"
#include "plugin/hex_blocks.h"

#include <string>

namespace corvane {

std::optional<OSType> ReadOutputFormat(std::string_view text) {
    // Codes are made of bytes, texts of characters.
    const std::string code = utf::NearestLatin1(text);
    if (code.size() == 4) return qt::CodeOfText(code);
    if (text.size() != 8) return std::nullopt;
    OSType format = 0;
    for (const char digit : text) {
        const auto value = HexDigitValue(digit);
        if (!value) return std::nullopt;
        format = format << 4 | *value;
    }
    return format;
}

} // namespace corvane
