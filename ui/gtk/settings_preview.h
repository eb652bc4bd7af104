// The picture of a settings dialog, made anew while settings change.
#pragma once

#include "platform/win32/settings_dialog.h"

#include <functional>
#include <gtk/gtk.h>

namespace corvane::gtk {

class SettingsPreview {
public:
    /// `make` makes the picture for the settings as they stand.
    explicit SettingsPreview(std::function<win32::SettingsPreview()> make);
    ~SettingsPreview();
    SettingsPreview(const SettingsPreview&) = delete;
    SettingsPreview& operator=(const SettingsPreview&) = delete;

    /// The frame with the picture; belongs to the container that it is put into.
    [[nodiscard]] GtkWidget* Frame() const { return frame_; }

    /// Makes the picture soon. Changes that follow each other quickly share one; a picture that takes long
    /// waits until the changes pause, so that typing is never held up.
    void Renew();

private:
    static gboolean Make(gpointer self);

    std::function<win32::SettingsPreview()> make_;
    GtkWidget* frame_;
    GtkWidget* image_;
    guint timer_ = 0;
    gint64 cost_ = 0; // µs, of the last picture
};

} // namespace corvane::gtk
