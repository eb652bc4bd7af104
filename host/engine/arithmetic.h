// Calculating with values. A result without a value (a division by zero, more digits than a number holds)
// is the text "?", and so is every further result that is calculated from it.
#pragma once

#include "host/engine/syntax.h"

#include <optional>

namespace host {

/// The value as a number; nullopt for the text "?".
std::optional<fm::Decimal> NumberIn(const FM_Data& value);
/// A number, or "?" without one.
FM_Data NumberResult(std::optional<fm::Decimal> number);

/// + - * and / of the values' numbers.
FM_Data Calculated(Operator operation, const FM_Data& left, const FM_Data& right);
FM_Data Negated(const FM_Data& value);

} // namespace host
