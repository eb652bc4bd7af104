// Comparing values: numbers with anything that holds a number by their numbers, containers by their
// contents, all else as text without regard to case.
#pragma once

#include "host/engine/syntax.h"

namespace host {

/// Negative, 0 or positive, as `left` is before, equal to or after `right`.
int Compare(const FM_Data& left, const FM_Data& right);

/// Whether the comparison holds.
bool Holds(Operator comparison, const FM_Data& left, const FM_Data& right);

} // namespace host
