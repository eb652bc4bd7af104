// Texts of windows.
#pragma once

#include <string>
#include <string_view>

namespace corvane::gtk {

inline constexpr long kLongestTitle = 200; // characters

/// The text as UTF-8 in any case, and cut after that many characters, which a mark then shows: the display
/// breaks off with a program whose texts are too long for it.
std::string Shortened(const std::string& text, long most);

/// Gives each label of one window a letter of its own to be reached by with Alt.
class Mnemonics {
public:
    /// The label with an underscore before the first letter or digit that is still free, and with its own
    /// underscores doubled.
    std::string Add(std::string_view label);

private:
    std::string taken_; // in lower case
};

} // namespace corvane::gtk
