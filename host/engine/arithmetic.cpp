#include "host/engine/arithmetic.h"

#include <utility>

namespace host {

std::optional<fm::Decimal> NumberIn(const FM_Data& value) {
    if (value.Type() == kFM_TypeText && value.AsText().units == u"?") return std::nullopt;
    return value.AsNumber().value;
}

FM_Data NumberResult(std::optional<fm::Decimal> number) {
    return number ? FM_Data(std::move(*number)) : FM_Data(std::u16string(u"?"));
}

FM_Data Calculated(Operator operation, const FM_Data& left, const FM_Data& right) {
    const auto a = NumberIn(left);
    const auto b = NumberIn(right);
    if (!a || !b) return NumberResult(std::nullopt);
    switch (operation) {
    case Operator::kAdd: return NumberResult(*a + *b);
    case Operator::kSubtract: return NumberResult(*a - *b);
    case Operator::kMultiply: return NumberResult(*a * *b);
    default: return NumberResult(*a / *b);
    }
}

FM_Data Negated(const FM_Data& value) {
    const auto number = NumberIn(value);
    return NumberResult(number ? std::optional(number->Negated()) : std::nullopt);
}

} // namespace host
