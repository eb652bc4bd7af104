#include "plugin/text_escapes.h"

namespace corvane {
namespace {

constexpr unsigned kByteLimit = 256;

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

} // namespace

std::string EscapeLineBreaks(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char character : text) {
        switch (character) {
        case '\r': escaped += "&#13;"; break;
        case '\n': escaped += "&#10;"; break;
        case '&': escaped += "&#38;"; break;
        case '#': escaped += "&#35;"; break;
        default: escaped += character;
        }
    }
    return escaped;
}

std::string UnescapeCharacterReferences(std::string_view text) {
    std::string plain;
    plain.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] != '&' || i + 2 >= text.size() || text[i + 1] != '#' || !IsDigit(text[i + 2])) {
            plain += text[i++];
            continue;
        }
        unsigned number = 0;
        for (i += 2; i < text.size() && IsDigit(text[i]); ++i)
            if (number < kByteLimit) number = number * 10 + static_cast<unsigned>(text[i] - '0');
        if (i < text.size() && text[i] == ';') ++i;
        plain += number < kByteLimit ? static_cast<char>(number) : '?';
    }
    return plain;
}

} // namespace corvane
