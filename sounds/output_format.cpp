#include "sounds/output_format.h"

#include "platform/quicktime/type_codes.h"
#include "plugin/hex_blocks.h"

namespace corvane {

std::optional<OSType> ReadOutputFormat(std::string_view text) {
    if (text.size() == 4) return qt::CodeOfText(text);
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
