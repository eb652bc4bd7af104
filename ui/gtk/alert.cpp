#include "ui/gtk/alert.h"

#include "ui/gtk/display.h"
#include "ui/gtk/labels.h"
#include "ui/gtk/modal.h"

namespace corvane::gtk {
namespace {

constexpr int kLineLength = 60;       // characters
constexpr long kLongestMessage = 800; // characters; one long word takes time that grows with its square
constexpr int kSpacing = 12;

GtkWidget* NewIcon(win32::AlertWindow::Icon icon) {
    const bool informs = icon == win32::AlertWindow::Icon::kInformation;
    GtkWidget* image =
        gtk_image_new_from_icon_name(informs ? "dialog-information" : "dialog-warning", GTK_ICON_SIZE_DIALOG);
    gtk_widget_set_valign(image, GTK_ALIGN_START);
    return image;
}

GtkWidget* NewMessage(const std::string& text) {
    GtkWidget* label = gtk_label_new(Shortened(text, kLongestMessage).c_str());
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_line_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
    gtk_label_set_max_width_chars(GTK_LABEL(label), kLineLength);
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    return label;
}

} // namespace

bool ShowAlert(const win32::AlertWindow& alert) {
    const Window window = NewDialog(alert.title);
    GtkDialog* dialog = GTK_DIALOG(window.get());
    gtk_window_set_keep_above(GTK_WINDOW(dialog), TRUE);
    GtkWidget* row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, kSpacing);
    gtk_container_add(GTK_CONTAINER(row), NewIcon(alert.icon));
    gtk_container_add(GTK_CONTAINER(row), NewMessage(alert.message));
    gtk_container_add(GTK_CONTAINER(gtk_dialog_get_content_area(dialog)), row);
    gtk_dialog_add_button(dialog, Mnemonics().Add(alert.button).c_str(), GTK_RESPONSE_ACCEPT);
    gtk_dialog_set_default_response(dialog, GTK_RESPONSE_ACCEPT);
    const int response = RunModal(window.get());
    return response != GTK_RESPONSE_NONE || !IsDisplayLost();
}

} // namespace corvane::gtk
