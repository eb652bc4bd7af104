#include "plugin/parameters.h"

#include "plugin/errors.h"
#include "plugin/host_data.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

namespace corvane {
namespace {

constexpr std::array<std::string_view, 7> kTrueWords = {"1", "true", "yes", "ja", "o", "j", "y"};

bool HasParameter(const FM_DataVect& parameters, std::int32_t index) {
    return index < Host(FM_DataVect_Size, &parameters);
}

} // namespace

std::string ToLowerAscii(std::string text) {
    for (char& character : text)
        if (character >= 'A' && character <= 'Z') character = static_cast<char>(character - 'A' + 'a');
    return text;
}

Read<std::string> ReadTextParameter(const FM_DataVect& parameters, std::int32_t index) {
    if (!HasParameter(parameters, index)) return {kErrorWrongParameter, {}};
    return {0, TextAsUtf8(Host(FM_DataVect_AtAsText, &parameters, index))};
}

Read<std::int32_t> ReadLongParameter(const FM_DataVect& parameters, std::int32_t index) {
    if (!HasParameter(parameters, index)) return {kErrorWrongParameter, 0};
    return {0, Host(FM_FixPt_AsLong, Host(FM_DataVect_AtAsNumber, &parameters, index))};
}

Read<float> ReadNumberParameter(const FM_DataVect& parameters, std::int32_t index) {
    if (!HasParameter(parameters, index)) return {kErrorWrongParameter, 0};
    const double number = Host(FM_FixPt_AsFloat, Host(FM_DataVect_AtAsNumber, &parameters, index));
    constexpr double kLargest = std::numeric_limits<float>::max();
    return {0, static_cast<float>(std::clamp(number, -kLargest, kLargest))};
}

Read<bool> ReadBooleanParameter(const FM_DataVect& parameters, std::int32_t index) {
    const Read<std::string> text = ReadTextParameter(parameters, index);
    if (text.code != 0) return {text.code, false};
    const std::string word = ToLowerAscii(text.value);
    return {0, std::find(kTrueWords.begin(), kTrueWords.end(), word) != kTrueWords.end()};
}

} // namespace corvane
