// Colours as web pages write them: "#" and six hexadecimal digits, red, green, blue.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace corvane {

struct RgbColor {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    bool operator==(const RgbColor&) const = default;
};

/// Spaces and carriage returns may stand in front, and behind six digits. Digits that the text ends without
/// are 0: "#F" is a dark red, "#" is black.
std::optional<RgbColor> ParseHtmlColor(std::string_view text);

} // namespace corvane
