// Modal windows: shown, run and taken down in one call.
#pragma once

#include "ui/gtk/display.h"

#include <functional>
#include <gtk/gtk.h>
#include <memory>
#include <string>

namespace corvane::gtk {

struct DestroyWindow {
    void operator()(GtkWidget* window) const {
        if (!IsDisplayLost()) gtk_widget_destroy(window);
    }
};
/// A toplevel window that goes away with this handle; one whose display is lost stays in memory.
using Window = std::unique_ptr<GtkWidget, DestroyWindow>;

/// An empty dialog with our margins. The caller adds content to gtk_dialog_get_content_area.
Window NewDialog(const std::string& title);

/// A function that runs while a window is open. Its exception closes the window and leaves RunModal: none may
/// cross the library's frames.
void Guarded(const std::function<void()>& function);

/// Shows the dialog until one of its buttons is pressed, or it is closed; answers the response, one of
/// GTK_RESPONSE_…; GTK_RESPONSE_NONE when the display went away. `closes` is asked about each response first,
/// and may keep the dialog open.
int RunModal(GtkWidget* dialog, const std::function<bool(int)>& closes = {});

} // namespace corvane::gtk
