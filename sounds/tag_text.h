// The texts of tag frames.
#pragma once

#include "sounds/tag_frames.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// What a frame's data is made of.
enum class TagContent : std::uint8_t {
    kText,    ///< an encoding, and texts
    kComment, ///< an encoding, a language, a description and a text
    kBinary   ///< no text
};

/// The text of a frame's data as UTF-8; several are joined by "/". Nothing for data without a text, of an
/// unknown encoding, or with UTF-16 that is none.
std::optional<std::string> DecodeTagText(std::string_view data, TagContent content);

/// Data of a frame with this text: in ISO-8859-1 where that has all its characters, else in UTF-16. A comment
/// gets no description, and no language. Not for kBinary.
std::string EncodeTagText(std::string_view utf8, TagContent content);

/// The text in ISO-8859-1, if it has all its characters.
std::optional<std::string> ToLatin1(std::string_view utf8);

} // namespace corvane
