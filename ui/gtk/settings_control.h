// The widgets of one setting.
#pragma once

#include "platform/win32/settings_dialog.h"

#include <functional>
#include <gtk/gtk.h>
#include <string>

namespace corvane::gtk {

/// The widgets are new and belong to the container that they are put into. The function reads the value in
/// the form of the answer, in range; it may be called as long as the widgets live.
struct ControlWidgets {
    GtkWidget* row = nullptr;    ///< everything that stands in the control's place
    GtkWidget* target = nullptr; ///< what the label's mnemonic leads to
    std::function<std::string()> value;
    std::function<void()> commit; ///< takes over what was typed and not yet confirmed; may be empty
};

/// `changed` is called after each change of the value. `label` is for the kind that carries its label itself.
ControlWidgets NewControl(const win32::SettingControl& control, const std::string& label,
                          const std::function<void()>& changed);

/// True for the kind whose label is part of its widgets.
bool CarriesLabel(const win32::SettingControl& control);

/// A box of choices, one of which is chosen: the one with `value`, else the first. Its value is
/// gtk_combo_box_get_active_id.
GtkWidget* NewChoices(const std::vector<win32::SettingChoice>& choices, const std::string& value,
                      const std::function<void()>& changed);

} // namespace corvane::gtk
