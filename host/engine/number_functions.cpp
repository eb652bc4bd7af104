#include "host/engine/arithmetic.h"
#include "host/engine/comparison.h"
#include "host/engine/functions.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace host::functions {
namespace {

template <class Map>
FM_Data Mapped(const Arguments& arguments, Map map) {
    const auto number = NumberIn(arguments.Value(0));
    return NumberResult(number ? std::optional<fm::Decimal>(map(*number)) : std::nullopt);
}

// The argument that is furthest in the direction of `sign`.
FM_Data Extreme(const Arguments& arguments, int sign) {
    FM_Data extreme = arguments.Value(0);
    for (std::size_t i = 1; i < arguments.Count(); ++i) {
        FM_Data value = arguments.Value(i);
        if (Compare(value, extreme) * sign > 0) extreme = std::move(value);
    }
    return extreme;
}

// a - b × floor(a / b). The quotient is rounded, so that its floor may be one off.
std::optional<fm::Decimal> Remainder(const fm::Decimal& a, const fm::Decimal& b) {
    const auto quotient = a / b;
    if (!quotient) return std::nullopt;
    const auto product = b * quotient->Floor();
    auto remainder = product ? a - *product : std::nullopt;
    if (remainder && remainder->Sign() * b.Sign() < 0) remainder = *remainder + b;
    return remainder;
}

} // namespace

FM_Data Abs(const Arguments& arguments) {
    return Mapped(arguments, [](const fm::Decimal& n) { return n.Sign() < 0 ? n.Negated() : n; });
}

FM_Data Floor(const Arguments& arguments) {
    return Mapped(arguments, [](const fm::Decimal& n) { return n.Floor(); });
}

FM_Data Int(const Arguments& arguments) {
    return Mapped(arguments, [](const fm::Decimal& n) { return n.Truncated(); });
}

FM_Data Round(const Arguments& arguments) {
    return Mapped(arguments, [&](const fm::Decimal& n) {
        constexpr std::int64_t kLimit = 10'000;
        return n.Rounded(static_cast<int>(std::clamp(arguments.Integer(1), -kLimit, kLimit)));
    });
}

FM_Data Mod(const Arguments& arguments) {
    const auto a = NumberIn(arguments.Value(0));
    const auto b = NumberIn(arguments.Value(1));
    return NumberResult(a && b ? Remainder(*a, *b) : std::nullopt);
}

FM_Data Max(const Arguments& arguments) {
    return Extreme(arguments, 1);
}

FM_Data Min(const Arguments& arguments) {
    return Extreme(arguments, -1);
}

FM_Data GetAsNumber(const Arguments& arguments) {
    FM_Data value = arguments.Value(0);
    if (!value.HasNumber()) return {};
    return FM_Data(value.AsNumber().value);
}

} // namespace host::functions
