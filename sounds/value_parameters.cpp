#include "sounds/value_parameters.h"

#include "platform/text/utf.h"
#include "plugin/errors.h"
#include "plugin/time_text.h"

#include <optional>
#include <string>
#include <string_view>

namespace corvane {

Read<FadeTime> ReadTimeParameter(const FM_DataVect& parameters, std::int32_t index, TimeSign sign) {
    constexpr std::size_t kTimeLimit = 1024;
    const Read<std::string> text = ReadTextParameter(parameters, index);
    if (text.code != 0) return {text.code, {}};
    std::string_view cursor = utf::CutAtCharacter(text.value, kTimeLimit);
    const bool from_end = sign == TimeSign::kFromEnd && ParseTimeSign(cursor);
    const std::optional<std::int32_t> seconds = ParseTime(cursor);
    if (!seconds) return {kErrorWrongParameter, {}};
    return {0, {*seconds, from_end}};
}

Read<RgbColor> ReadHtmlColorParameter(const FM_DataVect& parameters, std::int32_t index) {
    const Read<std::string> text = ReadTextParameter(parameters, index);
    if (text.code != 0) return {text.code, {}};
    const std::optional<RgbColor> color = ParseHtmlColor(text.value);
    if (!color) return {kErrorWrongParameter, {}};
    return {0, *color};
}

} // namespace corvane
