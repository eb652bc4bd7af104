#include "sounds/set_tags.h"

#include "platform/text/utf.h"
#include "plugin/errors.h"
#include "plugin/text_escapes.h"

#include <algorithm>

namespace corvane {
namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kBlanksAndLineEnds = " \t\r\n";

void Skip(std::string_view& text, std::string_view characters) {
    text.remove_prefix(std::min(text.find_first_not_of(characters), text.size()));
}

// Takes the key and the colon behind it off the text.
bool TakeKey(std::string_view& text, std::string_view& key) {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) return false;
    key = text.substr(0, colon);
    text.remove_prefix(colon + 1);
    return std::ranges::all_of(key, [](char c) { return static_cast<unsigned char>(c) - 0x20U < 0x60U; });
}

} // namespace

std::int32_t SetTag(TagFile& file, std::string_view name, std::string_view value) {
    if (name.empty()) {
        file.RemoveAll();
        return 0;
    }
    const TagName* row = FindTagName(name);
    if (row == nullptr || (row->content == TagContent::kBinary && !value.empty())) return kErrorUnknownTag;
    std::string text =
        row->content == TagContent::kComment ? UnescapeCharacterReferences(value) : std::string(value);
    text.resize(std::min(text.find('\0'), text.size())); // a zero ends a text in the tag
    if (!utf::IsValid(text)) return kErrorOutOfMemory;
    file.Set(*row, text);
    return 0;
}

std::int32_t SetTags(TagFile& file, std::string_view list) {
    for (Skip(list, kBlanksAndLineEnds); !list.empty(); Skip(list, kBlanksAndLineEnds)) {
        std::string_view key;
        if (!TakeKey(list, key)) return kErrorListSyntax;
        Skip(list, kBlanks);
        const std::string_view value = list.substr(0, list.find_first_of("\r\n"));
        list.remove_prefix(value.size());
        if (const std::int32_t code = SetTag(file, key, value); code != 0) return code;
    }
    return 0;
}

} // namespace corvane
