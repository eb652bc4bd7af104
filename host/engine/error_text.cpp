#include "host/engine/error_text.h"

#include "platform/text/utf.h"

#include <charconv>
#include <limits>

namespace host {

std::optional<ErrorText> ParseErrorText(const FM_Data& value) {
    if (value.Type() != kFM_TypeText || !value.AsText().units.starts_with(u'$')) return std::nullopt;
    const std::string text = utf::ToUtf8(value.AsText().units);
    const char* const end = text.data() + text.size();
    ErrorText error;
    const auto parsed = std::from_chars(text.data() + 1, end, error.code);
    if (parsed.ec == std::errc::result_out_of_range) { // an error even so
        using Limits = std::numeric_limits<std::int32_t>;
        error.code = text[1] == '-' ? Limits::min() : Limits::max();
    } else if (parsed.ec != std::errc()) {
        return std::nullopt;
    }
    if (parsed.ptr == end || *parsed.ptr != ':') return std::nullopt;
    error.message.assign(parsed.ptr + 1, end);
    return error;
}

} // namespace host
