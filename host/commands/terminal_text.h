// Texts of other people's files, for a person's terminal.
#pragma once

#include <string>
#include <string_view>

namespace host {

/// The UTF-8 text with U+FFFD for each control character but tabs and line ends: tags, file names and
/// databases must not move the cursor or change what stands on the screen. A carriage return ends a line.
std::string TerminalText(std::string_view text);

} // namespace host
