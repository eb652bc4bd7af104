#include "platform/text/utf.h"

#include <algorithm>
#include <clocale>
#include <cwctype>
#include <type_traits>

namespace utf {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsContinuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

// The C library's own Unicode tables, given back when this library is unloaded. A system stripped of them
// maps the ASCII letters only.
class UnicodeTables {
public:
    UnicodeTables() : locale_(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {
        if (locale_ == nullptr) locale_ = newlocale(LC_CTYPE_MASK, "C", nullptr);
    }
    UnicodeTables(const UnicodeTables&) = delete;
    UnicodeTables& operator=(const UnicodeTables&) = delete;
    ~UnicodeTables() { freelocale(locale_); }

    [[nodiscard]] locale_t get() const { return locale_; }

private:
    locale_t locale_;
};

locale_t UnicodeLocale() {
    static const UnicodeTables tables;
    return tables.get();
}

// Where the ASCII characters end that begin at `position`.
template <class View>
std::size_t FindAsciiEnd(View text, std::size_t position) {
    const auto unit = [&](std::size_t at) {
        return static_cast<std::make_unsigned_t<typename View::value_type>>(text[at]);
    };
    constexpr std::size_t kBlock = 16; // looked at together
    for (; position + kBlock <= text.size(); position += kBlock) {
        unsigned all = 0;
        for (std::size_t i = 0; i < kBlock; ++i) all |= unit(position + i);
        if (all >= 0x80) break;
    }
    while (position < text.size() && unit(position) < 0x80) ++position;
    return position;
}

// Most texts are ASCII from end to end, and what is can be moved many characters at a time.
template <class String, class View>
String Convert(View text) {
    String converted;
    converted.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t end = FindAsciiEnd(text, position);
        const std::size_t size = converted.size();
        converted.resize(size + (end - position));
        std::transform(text.begin() + static_cast<std::ptrdiff_t>(position),
                       text.begin() + static_cast<std::ptrdiff_t>(end),
                       converted.begin() + static_cast<std::ptrdiff_t>(size),
                       [](auto unit) { return static_cast<typename String::value_type>(unit); });
        position = end;
        if (position < text.size()) Append(converted, Next(text, position));
    }
    return converted;
}

template <char32_t (*Map)(char32_t), class String, class View>
String MapCase(View text) {
    String mapped;
    mapped.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) Append(mapped, Map(Next(text, position)));
    return mapped;
}

} // namespace

char32_t Next(std::string_view utf8, std::size_t& position) {
    const auto first = static_cast<unsigned char>(utf8[position++]);
    if (first < 0x80) return first;
    int length = 0;
    char32_t character = 0;
    char32_t smallest = 0;
    if (first >= 0xC2 && first <= 0xDF) {
        length = 1, character = first & 0x1FU, smallest = 0x80;
    } else if ((first & 0xF0) == 0xE0) {
        length = 2, character = first & 0x0FU, smallest = 0x800;
    } else if (first >= 0xF0 && first <= 0xF4) {
        length = 3, character = first & 0x07U, smallest = 0x10000;
    } else {
        return kReplacement;
    }
    for (int i = 0; i < length; ++i) {
        if (position >= utf8.size() || !IsContinuation(static_cast<unsigned char>(utf8[position])))
            return kReplacement;
        character = (character << 6) | (static_cast<unsigned char>(utf8[position++]) & 0x3FU);
    }
    const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
    return character < smallest || character > 0x10FFFF || surrogate ? kReplacement : character;
}

char32_t Next(std::u16string_view utf16, std::size_t& position) {
    const char32_t unit = utf16[position++];
    if (unit < 0xD800 || unit > 0xDFFF) return unit;
    if (unit <= 0xDBFF && position < utf16.size()) {
        const char32_t low = utf16[position];
        if (low >= 0xDC00 && low <= 0xDFFF) {
            ++position;
            return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
        }
    }
    return kReplacement;
}

void Append(std::string& utf8, char32_t character) {
    if (character < 0x80) {
        utf8.push_back(static_cast<char>(character));
        return;
    }
    if (character < 0x800) {
        utf8.push_back(static_cast<char>(0xC0 | (character >> 6)));
    } else {
        if (character < 0x10000) {
            utf8.push_back(static_cast<char>(0xE0 | (character >> 12)));
        } else {
            utf8.push_back(static_cast<char>(0xF0 | (character >> 18)));
            utf8.push_back(static_cast<char>(0x80 | ((character >> 12) & 0x3F)));
        }
        utf8.push_back(static_cast<char>(0x80 | ((character >> 6) & 0x3F)));
    }
    utf8.push_back(static_cast<char>(0x80 | (character & 0x3F)));
}

void Append(std::u16string& utf16, char32_t character) {
    if (character < 0x10000) {
        utf16.push_back(static_cast<char16_t>(character));
        return;
    }
    utf16.push_back(static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)));
    utf16.push_back(static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF)));
}

std::u16string ToUtf16(std::string_view utf8) {
    return Convert<std::u16string>(utf8);
}

std::string ToUtf8(std::u16string_view utf16) {
    return Convert<std::string>(utf16);
}

bool IsAsciiLetter(char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

bool IsAscii(std::string_view utf8) {
    return FindAsciiEnd(utf8, 0) == utf8.size();
}

bool IsValid(std::string_view utf8) {
    for (std::size_t position = 0; position < utf8.size();) {
        const std::size_t start = position;
        const char32_t character = Next(utf8, position);
        if (character == kReplacement && utf8.substr(start, position - start) != "\xEF\xBF\xBD") return false;
    }
    return true;
}

std::string NearestLatin1(std::string_view utf8) {
    if (!IsValid(utf8)) return std::string(utf8);
    std::string latin;
    latin.reserve(utf8.size());
    for (std::size_t position = 0; position < utf8.size();) {
        const char32_t character = Next(utf8, position);
        latin += character <= 0xFF ? static_cast<char>(character) : '?';
    }
    return latin;
}

std::string FromLatin1(std::string_view latin1) {
    std::string utf8;
    for (const char character : latin1) Append(utf8, static_cast<unsigned char>(character));
    return utf8;
}

std::string_view CutAtCharacter(std::string_view utf8, std::size_t limit) {
    if (utf8.size() <= limit) return utf8;
    std::size_t end = limit;
    // A character has at most three continuation bytes; more of them are malformed and may be cut anywhere.
    while (end > 0 && limit - end < 3 && IsContinuation(static_cast<unsigned char>(utf8[end]))) --end;
    if (IsContinuation(static_cast<unsigned char>(utf8[end]))) end = limit;
    return utf8.substr(0, end);
}

char32_t ToLower(char32_t character) {
    if (character < 0x80) return character >= 'A' && character <= 'Z' ? character + 32 : character;
    return static_cast<char32_t>(towlower_l(static_cast<wint_t>(character), UnicodeLocale()));
}

char32_t ToUpper(char32_t character) {
    if (character < 0x80) return character >= 'a' && character <= 'z' ? character - 32 : character;
    return static_cast<char32_t>(towupper_l(static_cast<wint_t>(character), UnicodeLocale()));
}

std::string ToLower(std::string_view utf8) {
    return MapCase<ToLower, std::string>(utf8);
}

std::string ToUpper(std::string_view utf8) {
    return MapCase<ToUpper, std::string>(utf8);
}

std::u16string ToLower(std::u16string_view utf16) {
    return MapCase<ToLower, std::u16string>(utf16);
}

std::u16string ToUpper(std::u16string_view utf16) {
    return MapCase<ToUpper, std::u16string>(utf16);
}

} // namespace utf
