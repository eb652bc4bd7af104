// Decimal character references, with which a value of several lines keeps to one line.
#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// Writes carriage return, line feed, "&" and "#" as "&#13;", "&#10;", "&#38;" and "&#35;".
std::string EscapeLineBreaks(std::string_view text);

/// Puts the byte of each reference in its place. The ";" may be missing; a number above 255 gives "?".
std::string UnescapeCharacterReferences(std::string_view text);

} // namespace corvane
