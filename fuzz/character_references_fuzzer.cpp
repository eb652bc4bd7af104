#include "plugin/text_escapes.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

// Escaping keeps to one line and comes back; unescaping never makes a text longer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::string escaped = corvane::EscapeLineBreaks(text);
    if (escaped.find_first_of("\r\n") != std::string::npos) std::abort();
    if (corvane::UnescapeCharacterReferences(escaped) != text) std::abort();
    if (corvane::UnescapeCharacterReferences(text).size() > text.size()) std::abort();
    return 0;
}
