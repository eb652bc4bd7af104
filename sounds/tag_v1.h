// ID3v1: 128 bytes at a file's end with the most important values, cut to fixed lengths.
#pragma once

#include "sounds/tag_names.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace corvane {

inline constexpr std::size_t kV1Size = 128;

/// Whether these last bytes of a file are such a tag.
bool IsV1Tag(std::string_view bytes);

/// The tag with the values that `tag` has for those of `names` which have a place in it; what isn't named
/// stays as it is in `old`. Without an old tag (empty) all values are taken.
std::string UpdatedV1Tag(std::string_view old, const Id3Tag& tag, std::span<const TagName* const> names);

} // namespace corvane
