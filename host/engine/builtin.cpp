#include "host/engine/builtin.h"

#include "platform/text/utf.h"

#include <algorithm>
#include <utility>

namespace host {

std::string Arguments::Utf8(std::size_t index) const {
    return utf::ToUtf8(Value(index).AsText().units);
}

std::int64_t Arguments::Integer(std::size_t index) const {
    return Value(index).AsNumber().value.ToInteger();
}

double Arguments::Seconds(std::size_t index) const {
    constexpr double kDay = 86400;
    return std::clamp(Value(index).AsNumber().value.ToDouble(), 0.0, kDay);
}

FM_Data NumberOf(std::int64_t value) {
    return FM_Data(fm::Decimal(value));
}

FM_Data TextOf(std::u16string text) {
    return FM_Data(std::move(text));
}

} // namespace host
