#include "fuzz/fuzz_target.h"
#include "plugin/text_escapes.h"

// Escaping keeps to one line and comes back; unescaping never makes a text longer.
void Fuzz(std::string_view text) {
    const std::string escaped = corvane::EscapeLineBreaks(text);
    Require(escaped.find_first_of("\r\n") == std::string::npos);
    Require(corvane::UnescapeCharacterReferences(escaped) == text);
    Require(corvane::UnescapeCharacterReferences(text).size() <= text.size());
}
