#pragma once

#include "plugin/function_row.h"

#include <span>

namespace corvane {

/// The image functions that are registered before and after the file functions, in that order.
std::span<const CountedFunction> ImageFunctionsBeforeFiles();
std::span<const CountedFunction> ImageFunctionsAfterFiles();

} // namespace corvane
