#pragma once

#include "platform/quicktime/handles.h"

#include <optional>

namespace corvane {

/// Kilobits a second of the sound that a sample description is of, with 0.5 added; nothing when the
/// description does not tell. A description of varying packets whose WAVE format is missing gives 0.
std::optional<double> BitRateOf(Handle description);

} // namespace corvane
