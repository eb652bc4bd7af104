// What else the display knows: the pointer, the window in front, and what is pressed.
#pragma once

#include "platform/win32/windows_module.h"

#include <optional>

namespace corvane::gtk {

std::optional<win32::PointerAndWindow> ReadPointerAndWindow();
bool IsDown(int key);

} // namespace corvane::gtk
