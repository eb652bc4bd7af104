// The dialog of named settings.
#pragma once

#include "platform/win32/settings_dialog.h"

#include <optional>

namespace corvane::gtk {

std::optional<win32::SettingValues> AskForSettings(const win32::SettingsDialog& dialog);

} // namespace corvane::gtk
