// The manual of functions: groups of names, and pages for those that are described.
#pragma once

#include <span>
#include <string_view>

namespace host {

/// Texts of several lines have no line end at their end.
struct ManualPage {
    std::string_view name;
    std::string_view summary;
    std::string_view parameters; ///< one a line: name, units or allowed values
    std::string_view result;
    std::string_view errors; ///< one a line: code, when
    std::string_view example;
    std::string_view output =
        {}; ///< what `corvane eval` prints for the example; "…" stands for any characters
};

struct ManualGroup {
    std::string_view title;
    std::span<const std::string_view> names; ///< in the order of the list; all functions of the group
    std::span<const ManualPage> pages;
};

extern const ManualGroup kGeneralManual;
extern const ManualGroup kFileManual;
extern const ManualGroup kImageManual;
extern const ManualGroup kSoundManual;
extern const ManualGroup kHostManual;

/// The groups of a plug-in's functions, in the order of the list.
std::span<const ManualGroup* const> PluginManual();
/// The page of that name, without regard to case; nullptr when there is none.
const ManualPage* FindPage(std::string_view name);

} // namespace host
