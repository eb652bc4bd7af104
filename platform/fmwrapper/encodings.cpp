#include "platform/fmwrapper/encodings.h"

#include "platform/text/utf.h"

#include <array>
#include <iconv.h>

namespace fm {
namespace {

// Both directions of Mac Roman, from the C library's own table. Bytes below 128 are ASCII.
class MacRoman {
public:
    MacRoman() {
        const iconv_t converter = iconv_open("UTF-8", "MACINTOSH");
        for (int byte = 0x80; byte <= 0xFF; ++byte) {
            char source = static_cast<char>(byte);
            std::array<char, 8> target{};
            char* from = &source;
            char* to = target.data();
            std::size_t from_left = 1;
            std::size_t to_left = target.size();
            char32_t character = U'?';
            if (converter != reinterpret_cast<iconv_t>(-1) &&
                iconv(converter, &from, &from_left, &to, &to_left) != static_cast<std::size_t>(-1)) {
                std::size_t position = 0;
                character = utf::Next(std::string_view(target.data(), target.size() - to_left), position);
            }
            upper_half_[static_cast<std::size_t>(byte - 0x80)] = character;
        }
        if (converter != reinterpret_cast<iconv_t>(-1)) iconv_close(converter);
    }

    [[nodiscard]] char32_t Character(unsigned char byte) const {
        return byte < 0x80 ? byte : upper_half_[byte - 0x80U];
    }

    [[nodiscard]] char Byte(char32_t character) const {
        if (character < 0x80) return static_cast<char>(character);
        for (std::size_t i = 0; i < upper_half_.size(); ++i)
            if (upper_half_[i] == character) return static_cast<char>(i + 0x80);
        return '?';
    }

private:
    std::array<char32_t, 128> upper_half_{};
};

const MacRoman& MacRomanTable() {
    static const MacRoman table;
    return table;
}

} // namespace

std::u16string Decode(std::string_view bytes, FM_Encoding encoding) {
    if (encoding != kFM_EncodingMacRoman) return utf::ToUtf16(bytes);
    std::u16string units;
    for (const char byte : bytes)
        utf::Append(units, MacRomanTable().Character(static_cast<unsigned char>(byte)));
    return units;
}

std::string Encode(std::u16string_view units, FM_Encoding encoding) {
    if (encoding != kFM_EncodingMacRoman) return utf::ToUtf8(units);
    std::string bytes;
    for (std::size_t position = 0; position < units.size();)
        bytes.push_back(MacRomanTable().Byte(utf::Next(units, position)));
    return bytes;
}

} // namespace fm
