#pragma once

#include "platform/fmwrapper/objects.h"

#include <memory>
#include <string>

namespace host {

/// The whole of a regular file (Unix path), at most 4 GiB - 1. nullptr, with the reason in `problem`, when
/// it can't be had.
std::shared_ptr<const fm::Bytes> FileBytes(const std::string& path, std::string& problem);

} // namespace host
