#pragma once

#include "plugin/function_row.h"

#include <span>

namespace corvane {

/// The file functions, in the order of registration.
std::span<const CountedFunction> FileFunctions();

} // namespace corvane
