#pragma once

#include "files/file_spec.h"

#include <cstdint>

namespace corvane {

/// Copies a file into the temporary folder, under a fresh name that ends in its own, and makes `file` the
/// copy, which is the caller's to delete. Before the first time, as the switch for remote files has it, the
/// user is told. The platform's number; then no copy is left.
std::int32_t CopyFromNetwork(XFileSpec& file);

} // namespace corvane
