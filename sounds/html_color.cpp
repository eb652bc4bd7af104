#include "sounds/html_color.h"

#include "plugin/hex_blocks.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr std::string_view kBlanks = " \r";
constexpr std::size_t kDigits = 6;

} // namespace

std::optional<RgbColor> ParseHtmlColor(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    if (!text.starts_with('#')) return std::nullopt;
    text.remove_prefix(1);

    std::uint32_t color = 0;
    for (std::size_t i = 0; i < kDigits; ++i) {
        const auto digit = i < text.size() ? HexDigitValue(text[i]) : 0;
        if (!digit) return std::nullopt;
        color = color << 4 | *digit;
    }
    if (text.find_first_not_of(kBlanks, kDigits) != std::string_view::npos) return std::nullopt;
    return RgbColor{static_cast<std::uint8_t>(color >> 16), static_cast<std::uint8_t>(color >> 8),
                    static_cast<std::uint8_t>(color)};
}

} // namespace corvane
