// Labels with mnemonics.
#pragma once

#include <string>
#include <string_view>

namespace corvane::gtk {

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
