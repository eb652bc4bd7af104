// Setting the tags of a sound file by their names.
#pragma once

#include "sounds/tag_file.h"

#include <cstdint>
#include <string_view>

namespace corvane {

inline constexpr std::int32_t kErrorUnknownTag = -5240;
inline constexpr std::int32_t kErrorListSyntax = -2740;

/// Sets one tag to a value (UTF-8); an empty value removes it, an empty name every frame of the file. A
/// comment's character references stand for bytes. kErrorUnknownTag for other names and for tags without a
/// text, -108 for a value that is no text.
std::int32_t SetTag(TagFile& file, std::string_view name, std::string_view value);

/// Sets the tags of a list, "Name: value" in each line, in order up to the first that fails; empty lines
/// don't count. kErrorListSyntax for a line without a colon, or with anything but ASCII in front of it.
std::int32_t SetTags(TagFile& file, std::string_view list);

} // namespace corvane
