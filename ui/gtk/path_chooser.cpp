#include "ui/gtk/path_chooser.h"

#include "ui/gtk/labels.h"
#include "ui/gtk/modal.h"

#include <memory>

namespace corvane::gtk {
namespace {

struct Free {
    void operator()(char* text) const { g_free(text); }
};

std::string ChosenPath(GtkFileChooser* chooser) {
    const std::unique_ptr<char, Free> path(gtk_file_chooser_get_filename(chooser));
    return path == nullptr ? "" : path.get();
}

// Tells why a choice is refused, above the buttons; takes no room until then.
class RefusalNote {
public:
    explicit RefusalNote(GtkFileChooser* chooser) : bar_(gtk_info_bar_new()), label_(gtk_label_new(nullptr)) {
        gtk_info_bar_set_message_type(GTK_INFO_BAR(bar_), GTK_MESSAGE_WARNING);
        gtk_label_set_line_wrap(GTK_LABEL(label_), TRUE);
        gtk_label_set_xalign(GTK_LABEL(label_), 0);
        gtk_container_add(GTK_CONTAINER(gtk_info_bar_get_content_area(GTK_INFO_BAR(bar_))), label_);
        gtk_widget_show(label_);
        gtk_widget_set_no_show_all(bar_, TRUE);
        GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0); // the chooser shows what it is given
        gtk_container_add(GTK_CONTAINER(box), bar_);
        gtk_file_chooser_set_extra_widget(chooser, box);
        g_signal_connect_swapped(chooser, "selection-changed", G_CALLBACK(gtk_widget_hide), bar_);
    }

    void Show(const std::string& text) {
        gtk_label_set_text(GTK_LABEL(label_), text.c_str());
        gtk_widget_show(bar_);
    }

private:
    GtkWidget* bar_;
    GtkWidget* label_;
};

Window NewChooser(const win32::PathWindow& request) {
    const bool folder = request.choice == win32::PathWindow::Choice::kFolder;
    const std::string title = !request.title.empty() ? request.title : folder ? "Choose Folder" : "Open";
    const std::string button = !request.button.empty() ? request.button : folder ? "OK" : "Open";
    Mnemonics mnemonics;
    const std::string accept = mnemonics.Add(button);
    const std::string cancel = mnemonics.Add("Cancel");
    Window window(gtk_file_chooser_dialog_new(
        Shortened(title, kLongestTitle).c_str(), nullptr,
        folder ? GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER : GTK_FILE_CHOOSER_ACTION_OPEN, cancel.c_str(),
        GTK_RESPONSE_CANCEL, accept.c_str(), GTK_RESPONSE_ACCEPT, nullptr));
    gtk_dialog_set_default_response(GTK_DIALOG(window.get()), GTK_RESPONSE_ACCEPT);
    GtkFileChooser* chooser = GTK_FILE_CHOOSER(window.get());
    gtk_file_chooser_set_local_only(chooser, TRUE);
    // Without a folder it would begin with the files used last, where no folder can be chosen.
    gtk_file_chooser_set_current_folder(chooser, request.folder.empty() ? "." : request.folder.c_str());
    return window;
}

} // namespace

std::optional<std::string> ChoosePath(const win32::PathWindow& request) {
    const Window window = NewChooser(request);
    GtkFileChooser* chooser = GTK_FILE_CHOOSER(window.get());
    RefusalNote note(chooser);
    std::string path;
    const int response = RunModal(window.get(), [&](int pressed) {
        if (pressed != GTK_RESPONSE_ACCEPT) return true;
        path = ChosenPath(chooser);
        const std::string refusal = request.refusal(path);
        if (!refusal.empty()) note.Show(refusal);
        return refusal.empty();
    });
    if (response != GTK_RESPONSE_ACCEPT) return std::nullopt;
    return path;
}

} // namespace corvane::gtk
