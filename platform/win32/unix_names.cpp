#include "platform/win32/unix_names.h"

#include "platform/text/utf.h"

namespace win32 {
namespace {

constexpr char32_t kBytes = 0xEF00;
constexpr char32_t kMalformed = 0xFFFD;
constexpr std::string_view kMalformedAsUtf8 = "\xEF\xBF\xBD";

bool StandsForByte(char32_t character) {
    return character >= kBytes + 0x80 && character <= kBytes + 0xFF;
}

} // namespace

std::u16string FromUnixName(std::string_view name) {
    if (utf::IsAscii(name)) return utf::ToUtf16(name);
    std::u16string text;
    text.reserve(name.size());
    for (std::size_t position = 0; position < name.size();) {
        const std::size_t start = position;
        const char32_t character = utf::Next(name, position);
        const std::string_view bytes = name.substr(start, position - start);
        if ((character == kMalformed && bytes != kMalformedAsUtf8) || StandsForByte(character)) {
            for (const char byte : bytes) utf::Append(text, kBytes + static_cast<unsigned char>(byte));
        } else {
            utf::Append(text, character);
        }
    }
    return text;
}

std::string ToUnixName(std::u16string_view name) {
    std::string bytes;
    bytes.reserve(name.size());
    for (std::size_t position = 0; position < name.size();) {
        const char32_t character = utf::Next(name, position);
        if (StandsForByte(character)) {
            bytes.push_back(static_cast<char>(character - kBytes));
        } else {
            utf::Append(bytes, character);
        }
    }
    return bytes;
}

} // namespace win32
