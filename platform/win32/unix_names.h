// Names of this machine's entries as UTF-16 text, without loss.
#pragma once

#include <string>
#include <string_view>

namespace win32 {

/// Entry names are bytes, mostly UTF-8. A byte that is no part of a well-formed character becomes the
/// private character U+EF00 + byte, so that such a name can be listed, kept in any Unicode text, and reached
/// again; the private characters U+EF80 to U+EFFF themselves come byte by byte. Hence
/// ToUnixName(FromUnixName(name)) == name for every name. Both also take whole paths.
std::u16string FromUnixName(std::string_view name);
std::string ToUnixName(std::u16string_view name);

} // namespace win32
