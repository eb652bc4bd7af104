#include "ui/gtk/modal.h"

#include "ui/gtk/labels.h"

#include <exception>

namespace corvane::gtk {
namespace {

constexpr guint kPumpInterval = 5; // ms; timers of the plug-in keep going at about this pace
constexpr guint kMargin = 12;

// One dialog that runs. Dialogs nest: a button of one may open another.
struct Loop {
    GMainLoop* main_loop = nullptr;
    const std::function<bool(int)>* closes = nullptr;
    int response = GTK_RESPONSE_NONE;
    std::exception_ptr failure;
    Loop* outer = nullptr;
};

Loop* g_loop = nullptr; // the innermost

void End(Loop& loop, int response) {
    loop.response = response;
    g_main_loop_quit(loop.main_loop);
}

void Answer(GtkDialog*, int response, Loop* loop) {
    bool closes = true;
    if (*loop->closes) Guarded([&] { closes = (*loop->closes)(response); });
    if (closes) End(*loop, response);
}

// A window that another program destroyed is closed like one whose close button was pressed.
gboolean AnswerDestroyed(GtkDialog* dialog, GdkEvent*, gpointer) {
    gtk_dialog_response(dialog, GTK_RESPONSE_DELETE_EVENT);
    return TRUE;
}

gboolean Pump(gpointer) {
    Guarded(DispatchMessages);
    return G_SOURCE_CONTINUE;
}

gboolean EndWithDisplay(gpointer data) {
    End(*static_cast<Loop*>(data), GTK_RESPONSE_NONE);
    return G_SOURCE_CONTINUE;
}

// Ends the loop when the display is lost: asked before the window library's own source, which would end the
// program when it looks for what came last.
guint WatchDisplay(Loop& loop) {
    static GSourceFuncs functions = {
        [](GSource*, gint*) -> gboolean { return IsDisplayLost() ? TRUE : FALSE; },
        [](GSource*) -> gboolean { return IsDisplayLost() ? TRUE : FALSE; },
        [](GSource*, GSourceFunc end, gpointer data) { return end(data); },
        nullptr,
        nullptr,
        nullptr};
    GSource* source = g_source_new(&functions, sizeof(GSource));
    g_source_set_priority(source, G_PRIORITY_HIGH);
    g_source_set_callback(source, EndWithDisplay, &loop, nullptr);
    const guint number = g_source_attach(source, nullptr);
    g_source_unref(source);
    return number;
}

// Brings what was drawn and taken down onto the screen, for nobody does so between two dialogs.
void Settle() {
    for (int i = 0; i < 100 && !IsDisplayLost() && gtk_events_pending() != FALSE; ++i) gtk_main_iteration();
    if (!IsDisplayLost()) gdk_display_flush(gdk_display_get_default());
}

} // namespace

Window NewDialog(const std::string& title) {
    Window dialog(gtk_dialog_new());
    gtk_window_set_title(GTK_WINDOW(dialog.get()), Shortened(title, kLongestTitle).c_str());
    gtk_window_set_resizable(GTK_WINDOW(dialog.get()), FALSE);
    gtk_container_set_border_width(GTK_CONTAINER(dialog.get()), kMargin);
    gtk_box_set_spacing(GTK_BOX(gtk_dialog_get_content_area(GTK_DIALOG(dialog.get()))), kMargin);
    return dialog;
}

void Guarded(const std::function<void()>& function) {
    try {
        function();
    } catch (...) {
        g_loop->failure = std::current_exception();
        End(*g_loop, GTK_RESPONSE_NONE);
    }
}

int RunModal(GtkWidget* dialog, const std::function<bool(int)>& closes) {
    Loop loop;
    loop.main_loop = g_main_loop_new(nullptr, FALSE);
    loop.closes = &closes;
    loop.outer = g_loop;
    g_loop = &loop;
    const gulong answers = g_signal_connect(dialog, "response", G_CALLBACK(Answer), &loop);
    const gulong deletes = g_signal_connect(dialog, "delete-event", G_CALLBACK(gtk_true), nullptr);
    const gulong destroys = g_signal_connect(dialog, "destroy-event", G_CALLBACK(AnswerDestroyed), nullptr);
    const guint watch = WatchDisplay(loop);
    const guint pump = g_timeout_add(kPumpInterval, Pump, nullptr);
    gtk_window_set_modal(GTK_WINDOW(dialog), TRUE);
    gtk_window_set_position(GTK_WINDOW(dialog), GTK_WIN_POS_CENTER);
    gtk_widget_show_all(dialog);
    gtk_window_present(GTK_WINDOW(dialog));
    g_main_loop_run(loop.main_loop);
    g_source_remove(pump);
    g_source_remove(watch);
    g_signal_handler_disconnect(dialog, destroys);
    g_signal_handler_disconnect(dialog, deletes);
    g_signal_handler_disconnect(dialog, answers);
    if (!IsDisplayLost()) gtk_widget_hide(dialog);
    Settle();
    g_main_loop_unref(loop.main_loop);
    g_loop = loop.outer;
    if (loop.failure) std::rethrow_exception(loop.failure);
    return loop.response;
}

} // namespace corvane::gtk
