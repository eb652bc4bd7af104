#include "sounds/tag_text.h"

#include "platform/text/utf.h"

#include <algorithm>

namespace corvane {
namespace {

constexpr char kLatin1 = 0;
constexpr char kUtf16 = 1; // with a byte-order mark
constexpr char kUtf16BigEndian = 2;
constexpr char kUtf8 = 3;

constexpr std::string_view kNoLanguage = "XXX";

std::size_t UnitSize(char encoding) {
    return encoding == kUtf16 || encoding == kUtf16BigEndian ? 2 : 1;
}

// Takes the text up to its terminator, or the end, off the data, with the terminator.
std::string_view TakeText(std::string_view& data, std::size_t unit) {
    std::size_t end = 0;
    while (end + unit <= data.size() &&
           data.substr(end, unit).find_first_not_of('\0') != std::string_view::npos)
        end += unit;
    const std::string_view text = data.substr(0, end);
    data.remove_prefix(std::min(end + unit, data.size()));
    return text;
}

bool HasLoneSurrogate(std::u16string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] < 0xD800 || text[i] > 0xDFFF) continue;
        if (text[i] > 0xDBFF || i + 1 == text.size() || text[i + 1] < 0xDC00 || text[i + 1] > 0xDFFF)
            return true;
        ++i;
    }
    return false;
}

// The order is that of the byte-order mark; `little` is that of the texts before, which may hold for all.
std::optional<std::string> FromUtf16(std::string_view text, bool& little) {
    std::u16string units;
    units.reserve(text.size() / 2);
    for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
        const auto high = static_cast<unsigned char>(text[little ? i + 1 : i]);
        const auto low = static_cast<unsigned char>(text[little ? i : i + 1]);
        units += static_cast<char16_t>(high << 8 | low);
        if (i == 0 && units[0] == 0xFFFE) little = !little;
        if (i == 0 && (units[0] == 0xFEFF || units[0] == 0xFFFE)) units.clear();
    }
    if (HasLoneSurrogate(units)) return std::nullopt;
    return utf::ToUtf8(units);
}

std::optional<std::string> Decode(std::string_view text, char encoding, bool& little) {
    switch (encoding) {
    case kLatin1: return utf::FromLatin1(text);
    case kUtf8: return std::string(text);
    default: return FromUtf16(text, little);
    }
}

// Big-endian: a mark that no decoder of sound takes for the beginning of a frame.
std::string ToUtf16WithMark(std::string_view utf8) {
    std::string bytes = "\xFE\xFF";
    for (const char16_t unit : utf::ToUtf16(utf8)) {
        bytes += static_cast<char>(unit >> 8);
        bytes += static_cast<char>(unit & 0xFF);
    }
    return bytes;
}

} // namespace

std::optional<std::string> DecodeTagText(std::string_view data, TagContent content) {
    if (content == TagContent::kBinary || data.empty() || data[0] < kLatin1 || data[0] > kUtf8)
        return std::nullopt;
    const char encoding = data[0];
    const std::size_t unit = UnitSize(encoding);
    data.remove_prefix(1);
    bool little = false;
    if (content == TagContent::kComment) {
        if (data.size() < kNoLanguage.size()) return std::nullopt;
        data.remove_prefix(kNoLanguage.size());
        if (!Decode(TakeText(data, unit), encoding, little)) return std::nullopt;
        return Decode(TakeText(data, unit), encoding, little);
    }
    std::optional<std::string> text = Decode(TakeText(data, unit), encoding, little);
    while (text && data.size() >= unit) {
        const std::optional<std::string> more = Decode(TakeText(data, unit), encoding, little);
        if (!more) return std::nullopt;
        if (!more->empty()) text->append("/").append(*more);
    }
    return text;
}

std::string EncodeTagText(std::string_view utf8, TagContent content) {
    const bool comment = content == TagContent::kComment;
    std::string data;
    if (const std::optional<std::string> latin1 = ToLatin1(utf8)) {
        data += kLatin1;
        if (comment) data.append(kNoLanguage).append(1, '\0');
        return data.append(*latin1);
    }
    data += kUtf16;
    if (comment) data.append(kNoLanguage).append(ToUtf16WithMark({})).append(2, '\0');
    return data.append(ToUtf16WithMark(utf8));
}

std::optional<std::string> ToLatin1(std::string_view utf8) {
    constexpr char32_t kLast = 0xFF;
    std::string latin1;
    latin1.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        const char32_t character = utf::Next(utf8, i);
        if (character > kLast) return std::nullopt;
        latin1 += static_cast<char>(character);
    }
    return latin1;
}

} // namespace corvane
