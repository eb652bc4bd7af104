// UTF-8, UTF-16 and simple case mapping: the only conversions of text that the platform layers share.
#pragma once

#include <string>
#include <string_view>

namespace utf {

/// Malformed sequences (stray or missing continuation bytes, overlong forms, surrogates, values above
/// U+10FFFF) each become one U+FFFD.
std::u16string ToUtf16(std::string_view utf8);

/// A surrogate without its partner becomes U+FFFD.
std::string ToUtf8(std::u16string_view utf16);

bool IsAscii(std::string_view utf8);
bool IsAsciiLetter(char character);

/// True when every sequence is well formed.
bool IsValid(std::string_view utf8);

/// The longest prefix of at most `limit` bytes that does not end inside a character.
std::string_view CutAtCharacter(std::string_view utf8, std::size_t limit);

/// The text in ISO-8859-1, with "?" for what it lacks. What is not well formed is taken for ISO-8859-1 as it
/// is.
std::string NearestLatin1(std::string_view utf8);
std::string FromLatin1(std::string_view latin1);

/// Simple (one to one) Unicode case mapping, independent of the process's locale.
char32_t ToLower(char32_t character);
char32_t ToUpper(char32_t character);
std::string ToLower(std::string_view utf8);
std::string ToUpper(std::string_view utf8);
std::u16string ToLower(std::u16string_view utf16);
std::u16string ToUpper(std::u16string_view utf16);

/// Reads the character that begins at `position` and steps over it. Malformed input gives U+FFFD.
char32_t Next(std::string_view utf8, std::size_t& position);
char32_t Next(std::u16string_view utf16, std::size_t& position);
void Append(std::string& utf8, char32_t character);
void Append(std::u16string& utf16, char32_t character);

} // namespace utf
