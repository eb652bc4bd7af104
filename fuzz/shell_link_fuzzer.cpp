#include "fuzz/fuzz_target.h"
#include "platform/win32/shell_link.h"

// Shortcut files of any origin: what is read of one is read of the one that is written for it, but for
// separators at the end.
void Fuzz(std::string_view input) {
    const auto link = win32::DecodeShellLink(input);
    if (!link) return;
    const auto again = win32::DecodeShellLink(win32::EncodeShellLink(*link));
    Require(again && link->target.starts_with(again->target));
    Require(link->target.find_first_not_of(u'\\', again->target.size()) == std::u16string::npos);
    Require(link->description.starts_with(again->description));
}
