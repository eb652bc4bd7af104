#include "sounds/information_list.h"

#include "platform/text/utf.h"

#include <algorithm>

namespace corvane {
namespace {

constexpr std::size_t kLineLimit = 1023; // characters

bool IsLineEnd(char c) {
    return c == '\r' || c == '\n';
}

// Bytes of the line that the text begins with. Nearly all lines are short, and their bytes need no decoding.
std::size_t LineLength(std::string_view text) {
    const std::string_view head = text.substr(0, kLineLimit);
    const auto end =
        static_cast<std::size_t>(std::find_if(head.begin(), head.end(), IsLineEnd) - head.begin());
    if (end < kLineLimit || utf::IsAscii(head)) return end;
    std::size_t length = 0;
    for (std::size_t i = 0; i < kLineLimit && length < text.size() && !IsLineEnd(text[length]); ++i)
        utf::Next(text, length);
    return length;
}

std::string_view WithoutLeadingSpaces(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return text;
}

// Takes the next key of a path, without the slashes before it; empty at the end of the path.
std::string_view TakeKey(std::string_view& path) {
    path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
    const std::string_view key = path.substr(0, path.find('/'));
    path.remove_prefix(key.size());
    return key;
}

} // namespace

bool InformationLines::Next(std::string_view& line) {
    if (rest_.empty()) return false;
    line = rest_.substr(0, LineLength(rest_));
    rest_.remove_prefix(line.size());
    if (!rest_.empty() && IsLineEnd(rest_[0])) rest_.remove_prefix(rest_.starts_with("\r\n") ? 2 : 1);
    return true;
}

std::size_t InformationLevel(std::string_view line) {
    return (std::min(line.find_first_not_of(' '), line.size()) + 2) / 2;
}

std::string_view InformationKey(std::string_view line) {
    return WithoutNote(WithoutLeadingSpaces(line.substr(0, line.find(':'))));
}

std::string_view InformationValue(std::string_view line) {
    const std::size_t colon = line.find(':');
    return colon == std::string_view::npos ? line : WithoutLeadingSpaces(line.substr(colon + 1));
}

std::string_view WithoutNote(std::string_view key) {
    const std::size_t note = key.ends_with(')') ? key.rfind('(') : std::string_view::npos;
    if (note == std::string_view::npos) return key;
    return key.substr(0, key.substr(0, note).find_last_not_of(' ') + 1);
}

std::size_t CountInformationLines(std::string_view list) {
    return 1 + static_cast<std::size_t>(std::count(list.begin(), list.end(), '\r'));
}

FoundInformation FindInformationLine(std::string_view list, std::uint32_t number) {
    InformationLines lines(list);
    std::string_view line;
    for (std::uint32_t read = 0; read < number; ++read)
        if (!lines.Next(line)) return {};
    return {InformationSearch::kFound, InformationValue(line)};
}

FoundInformation FindInformationKey(std::string_view list, std::string_view path) {
    // Each slash stands for a level, even where no key follows it: such a path asks for more levels than it
    // has keys, and nothing can match it.
    const auto levels = static_cast<std::size_t>(std::count(path.begin(), path.end(), '/')) + 1;
    std::size_t level = 1;
    std::string_view key = TakeKey(path);
    if (key.empty()) return {InformationSearch::kNoKey, {}};
    if (level == levels) key = WithoutNote(key);
    if (key.empty()) return {InformationSearch::kEmptyKey, {}};

    InformationLines lines(list);
    for (std::string_view line; lines.Next(line);) {
        if (InformationLevel(line) != level || InformationKey(line) != key) continue;
        if (level == levels) return {InformationSearch::kFound, InformationValue(WithoutLeadingSpaces(line))};
        ++level;
        key = TakeKey(path);
        if (level == levels) key = WithoutNote(key);
        if (key.empty()) break;
    }
    return {};
}

} // namespace corvane
