// A dialog of named settings, described by a table: one page of controls, or several to choose from.
//
// Without windows the session's next answer stands for the person: "ok" confirms what is shown,
// "set:KEY=VALUE,KEY=VALUE" changes that much and confirms; any other answer, and none, is a Cancel.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace win32 {

/// Keys and values in the order in which they were given; a key may be given twice (the last one counts).
using SettingValues = std::vector<std::pair<std::string, std::string>>;

struct SettingChoice {
    std::string value; ///< as in the answer
    std::string label; ///< for people
};

struct SettingControl {
    enum class Kind : std::uint8_t {
        kNumber, ///< a decimal number from `minimum` to `maximum`
        kChoice, ///< one of `choices`
        kToggle, ///< "0" or "1"
        kColour, ///< "#rrggbb"
        kText
    };
    std::string key; ///< as in the answer
    std::string label;
    Kind kind = Kind::kText;
    std::string value; ///< what the control shows at first, in the form of the answer
    double minimum = 0;
    double maximum = 0;
    double step = 1;  ///< of one turn of the control; a whole number: the value has no fraction
    std::string unit; ///< shown behind the control; may be empty
    std::vector<SettingChoice> choices;
};

struct SettingsPage {
    std::string value; ///< the page's name in the answer
    std::string label;
    std::vector<SettingControl> controls;
};

/// Pixels that the longer side of a preview may have: the dialog keeps this much room for it.
constexpr int kLongestPreviewSide = 320;

/// A picture that the dialog shows: 8 bits each of red, green, blue, no padding between rows.
struct SettingsPreview {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgb;
};

struct SettingsDialog {
    std::string title;
    std::vector<SettingsPage> pages;
    std::size_t page = 0;   ///< the page that is shown first
    std::string page_key;   ///< key of the chosen page in the answer; only with several pages
    std::string page_label; ///< label of the control that chooses the page
    /// Makes the picture for the settings as they stand (all of the page's, and the page's key); null: the
    /// dialog has no picture. Called on the thread of AskForSettings; an empty picture shows none.
    std::function<SettingsPreview(const SettingValues&)> preview;
    std::string action_label;                         ///< label of a further button; empty: there is none
    std::function<void(const SettingValues&)> action; ///< what it does with the settings as they stand
};

/// Shows the dialog until it is closed. Answers the values that may differ from those shown first: with
/// windows, all values of the chosen page, in range; without, what the answer has, unchecked. nullopt on
/// Cancel.
std::optional<SettingValues> AskForSettings(const SettingsDialog& dialog);

} // namespace win32
