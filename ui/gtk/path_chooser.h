// The dialogs that let a person choose a file or a folder.
#pragma once

#include "platform/win32/windows_module.h"

#include <optional>
#include <string>

namespace corvane::gtk {

std::optional<std::string> ChoosePath(const win32::PathWindow& request);

} // namespace corvane::gtk
