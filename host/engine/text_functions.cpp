// Positions and counts are in characters, not UTF-16 units, so that no function cuts a character in two.
#include "host/engine/functions.h"
#include "platform/text/utf.h"

#include <algorithm>
#include <utility>

namespace host::functions {
namespace {

bool IsLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

std::int64_t CharacterCount(std::u16string_view text) {
    std::int64_t count = 0;
    for (std::size_t at = 0; at < text.size(); ++count) utf::Next(text, at);
    return count;
}

// Offset in units of the character at `index` (from 0), held to the text.
std::size_t OffsetOf(std::u16string_view text, std::int64_t index) {
    std::size_t at = 0;
    for (; index > 0 && at < text.size(); --index) utf::Next(text, at);
    return at;
}

std::size_t OffsetFromEnd(std::u16string_view text, std::int64_t count) {
    std::size_t at = text.size();
    for (; count > 0 && at > 0; --count) {
        --at;
        const bool pair =
            IsLowSurrogate(text[at]) && at > 0 && text[at - 1] >= 0xD800 && text[at - 1] <= 0xDBFF;
        if (pair) --at;
    }
    return at;
}

FM_Data Slice(const std::u16string& text, std::size_t begin, std::size_t end) {
    return TextOf(text.substr(begin, end - begin));
}

std::size_t CountOf(std::u16string_view text, std::u16string_view search) {
    if (search.empty()) return 0;
    std::size_t count = 0;
    for (auto at = text.find(search); at != std::u16string_view::npos;
         at = text.find(search, at + search.size()))
        ++count;
    return count;
}

std::u16string Replaced(std::u16string_view text, std::u16string_view search,
                        std::u16string_view replacement) {
    std::u16string result;
    std::size_t copied = 0;
    for (auto at = text.find(search); at != std::u16string_view::npos; at = text.find(search, copied)) {
        result += text.substr(copied, at - copied);
        result += replacement;
        copied = at + search.size();
    }
    result += text.substr(copied);
    return result;
}

// Offset of the n-th occurrence at or after `start`; with a negative n of the n-th at or before it.
std::size_t FindOccurrence(std::u16string_view text, std::u16string_view search, std::size_t start,
                           std::int64_t n) {
    constexpr auto kNone = std::u16string_view::npos;
    auto at = n > 0 ? text.find(search, start) : text.rfind(search, start);
    for (std::int64_t left = n > 0 ? n - 1 : -(n + 1); left > 0 && at != kNone; --left) {
        if (n > 0) {
            at = text.find(search, at + search.size());
        } else {
            at = at == 0 ? kNone : text.rfind(search, at - 1);
        }
    }
    return at;
}

} // namespace

FM_Data GetAsText(const Arguments& arguments) {
    return TextOf(arguments.Text(0));
}

FM_Data Length(const Arguments& arguments) {
    return NumberOf(CharacterCount(arguments.Value(0).AsText().units));
}

FM_Data Left(const Arguments& arguments) {
    const std::u16string text = arguments.Text(0);
    return Slice(text, 0, OffsetOf(text, arguments.Integer(1)));
}

FM_Data Right(const Arguments& arguments) {
    const std::u16string text = arguments.Text(0);
    return Slice(text, OffsetFromEnd(text, arguments.Integer(1)), text.size());
}

FM_Data Middle(const Arguments& arguments) {
    const std::u16string text = arguments.Text(0);
    const std::int64_t start = std::max<std::int64_t>(arguments.Integer(1), 1);
    const std::size_t begin = OffsetOf(text, start - 1);
    const std::u16string_view rest = std::u16string_view(text).substr(begin);
    return Slice(text, begin, begin + OffsetOf(rest, arguments.Integer(2)));
}

FM_Data Position(const Arguments& arguments) {
    const std::u16string text = utf::ToLower(std::u16string_view(arguments.Text(0)));
    const std::u16string search = utf::ToLower(std::u16string_view(arguments.Text(1)));
    const std::int64_t start = arguments.Integer(2);
    const std::int64_t occurrence = arguments.Integer(3);
    if (search.empty() || occurrence == 0) return NumberOf(0);
    const std::size_t offset = OffsetOf(text, std::max<std::int64_t>(start, 1) - 1);
    const std::size_t found = FindOccurrence(text, search, offset, occurrence);
    if (found == std::u16string::npos) return NumberOf(0);
    return NumberOf(CharacterCount(std::u16string_view(text).substr(0, found)) + 1);
}

FM_Data PatternCount(const Arguments& arguments) {
    const std::u16string text = utf::ToLower(std::u16string_view(arguments.Text(0)));
    const std::u16string search = utf::ToLower(std::u16string_view(arguments.Text(1)));
    return NumberOf(static_cast<std::int64_t>(CountOf(text, search)));
}

FM_Data Substitute(const Arguments& arguments) {
    std::u16string text = arguments.Text(0);
    for (std::size_t i = 1; i + 1 < arguments.Count(); i += 2) {
        const std::u16string search = arguments.Text(i);
        const std::u16string replacement = arguments.Text(i + 1);
        const std::size_t count = CountOf(text, search);
        if (count == 0) continue;
        constexpr std::size_t kMost = std::size_t{1} << 40; // far above any allowance, far from overflow
        const std::size_t kept = text.size() - count * search.size();
        const std::size_t added = replacement.size() > kMost / count ? kMost : count * replacement.size();
        if (!arguments.GetEvaluation().Charge(kept + added)) return {};
        text = Replaced(text, search, replacement);
    }
    return TextOf(std::move(text));
}

FM_Data Upper(const Arguments& arguments) {
    return TextOf(utf::ToUpper(std::u16string_view(arguments.Text(0))));
}

FM_Data Lower(const Arguments& arguments) {
    return TextOf(utf::ToLower(std::u16string_view(arguments.Text(0))));
}

FM_Data Trim(const Arguments& arguments) {
    const std::u16string text = arguments.Text(0);
    const auto begin = text.find_first_not_of(u' ');
    if (begin == std::u16string::npos) return {};
    return Slice(text, begin, text.find_last_not_of(u' ') + 1);
}

FM_Data GetValue(const Arguments& arguments) {
    const std::u16string text = arguments.Text(0);
    std::int64_t number = arguments.Integer(1);
    std::size_t begin = 0;
    if (number < 1) return {};
    while (--number > 0) {
        const auto end = text.find(u'\r', begin);
        if (end == std::u16string::npos) return {};
        begin = end + 1;
    }
    return Slice(text, begin, std::min(text.find(u'\r', begin), text.size()));
}

FM_Data ValueCount(const Arguments& arguments) {
    const std::u16string text = arguments.Text(0);
    const bool open_end = !text.empty() && text.back() != u'\r';
    return NumberOf(std::ranges::count(text, u'\r') + (open_end ? 1 : 0));
}

FM_Data Char(const Arguments& arguments) {
    const std::int64_t code = arguments.Integer(0);
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code <= 0 || code > 0x10FFFF || surrogate) return {};
    std::u16string text;
    utf::Append(text, static_cast<char32_t>(code));
    return TextOf(std::move(text));
}

FM_Data Code(const Arguments& arguments) {
    const std::u16string text = arguments.Text(0);
    if (text.empty()) return {};
    std::size_t at = 0;
    return NumberOf(utf::Next(std::u16string_view(text), at));
}

} // namespace host::functions
