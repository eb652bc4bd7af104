#include "platform/quicktime/effects/effect_values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace qt {
namespace {

using Kind = EffectParameter::Kind;

constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();

std::string_view Trim(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

double ParseNumber(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (end != text.data() + text.size()) return kNoValue;
    if (error == std::errc::result_out_of_range) {
        if (text.find("e-") != std::string_view::npos || text.find("E-") != std::string_view::npos) return 0;
        constexpr double kInfinity = std::numeric_limits<double>::infinity();
        return text.starts_with('-') ? -kInfinity : kInfinity;
    }
    return error == std::errc() ? number : kNoValue;
}

double ParseColour(std::string_view text) {
    constexpr std::size_t kDigits = 6;
    if (text.starts_with('#')) text.remove_prefix(1);
    std::uint32_t colour = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), colour, 16);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole && text.size() == kDigits ? colour : kNoValue;
}

double ParseChoice(std::span<const EffectChoice> choices, std::string_view text) {
    const auto found = std::ranges::find(choices, text, &EffectChoice::word);
    return found != choices.end() ? static_cast<double>(found - choices.begin()) : kNoValue;
}

double ParseToggle(std::string_view text) {
    if (text == "1" || text == "true" || text == "yes" || text == "on") return 1;
    if (text == "0" || text == "false" || text == "no" || text == "off") return 0;
    return kNoValue;
}

/// NaN for a text that is no value of the parameter.
double ParseValue(const EffectParameter& parameter, std::string_view text) {
    text = Trim(text);
    switch (parameter.kind) {
    case Kind::kChoice: return ParseChoice(parameter.choices, text);
    case Kind::kToggle: return ParseToggle(text);
    case Kind::kColour: return ParseColour(text);
    default: return ParseNumber(text);
    }
}

/// At most three decimals.
std::string NumberText(double number) {
    std::array<char, 32> digits{};
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::fixed, 3);
    std::string text(digits.data(), end.ptr);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) text.pop_back();
    return text == "-0" ? "0" : text;
}

std::string ColourText(std::uint32_t colour) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text = "#";
    for (int shift = 20; shift >= 0; shift -= 4) text += kDigits[colour >> shift & 0xF];
    return text;
}

} // namespace

EffectValues::EffectValues(std::span<const EffectParameter> parameters) : parameters_(parameters) {
    for (std::size_t i = 0; i < parameters.size(); ++i) values_.at(i) = parameters[i].standard;
}

double EffectValues::Number(std::string_view key) const {
    return values_[Find(key).value()];
}

std::optional<std::size_t> EffectValues::Find(std::string_view key) const {
    const auto found = std::ranges::find(parameters_, key, &EffectParameter::key);
    if (found == parameters_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - parameters_.begin());
}

void EffectValues::Set(std::size_t index, double value) {
    const EffectParameter& parameter = parameters_[index];
    if (std::isnan(value)) value = parameter.standard;
    value = std::clamp(value, parameter.minimum, parameter.maximum);
    values_[index] = parameter.kind == Kind::kNumber ? value : std::round(value);
}

void EffectValues::SetText(std::size_t index, std::string_view text) {
    Set(index, ParseValue(parameters_[index], text));
}

std::string EffectValues::TextAt(std::size_t index) const {
    const EffectParameter& parameter = parameters_[index];
    const double value = values_[index];
    switch (parameter.kind) {
    case Kind::kChoice: return std::string(parameter.choices[static_cast<std::size_t>(value)].word);
    case Kind::kColour: return ColourText(static_cast<std::uint32_t>(value));
    default: return NumberText(value);
    }
}

void EffectValues::ScaleLengths(double scale) {
    for (std::size_t i = 0; i < parameters_.size(); ++i) {
        if (parameters_[i].unit == kPixelUnit) Set(i, values_[i] * scale);
    }
}

} // namespace qt
