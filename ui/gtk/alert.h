// The alert: an icon, a message and one button.
#pragma once

#include "platform/win32/windows_module.h"

namespace corvane::gtk {

bool ShowAlert(const win32::AlertWindow& alert);

} // namespace corvane::gtk
