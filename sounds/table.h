#pragma once

#include "plugin/function_row.h"

#include <span>

namespace corvane {

/// The sound functions, in the order of their ids.
std::span<const SoundFunction> SoundFunctions();

} // namespace corvane
