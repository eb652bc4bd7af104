#include "host/commands/terminal_text.h"

namespace host {

std::string TerminalText(std::string_view text) {
    constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
    std::string shown;
    shown.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : '\0');
        const bool is_layout = byte == '\t' || byte == '\n';
        const bool is_long = byte == 0xC2 && next >= 0x80 && next < 0xA0; // U+0080 to U+009F
        if (byte == '\r') {
            if (next != '\n') shown += '\n';
        } else if ((byte < 0x20 && !is_layout) || byte == 0x7F || is_long) {
            shown += kReplacement;
            if (is_long) ++i;
        } else {
            shown += text[i];
        }
    }
    return shown;
}

} // namespace host
