// Names of notes: a letter, "#" or "b" behind it, and an octave digit, as in "A4", "c#5", "Bb3". "B" is
// B flat and "H" is B natural. Whatever follows the octave digit doesn't count.
#pragma once

#include "platform/quicktime/types.h"

#include <optional>
#include <string_view>

namespace corvane {

/// Hertz of a note from C1 to B8; nothing for a text that is none.
std::optional<Fixed> NoteFrequency(std::string_view text);

} // namespace corvane
