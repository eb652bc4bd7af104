// What else the display knows: the pointer, and the window in front.
#pragma once

#include "platform/win32/windows_module.h"

#include <optional>

namespace corvane::gtk {

std::optional<win32::PointerAndWindow> ReadPointerAndWindow();

} // namespace corvane::gtk
