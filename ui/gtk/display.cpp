#include "ui/gtk/display.h"

#include <cstdlib>
#include <gtk/gtk.h>

#ifdef GDK_WINDOWING_X11
#include <X11/Xlib.h>
#include <gdk/gdkx.h>
#include <poll.h>
#endif

namespace corvane::gtk {
namespace {

enum class Display : std::uint8_t { kUnopened, kOpen, kLost };

Display g_display = Display::kUnopened;
bool g_loss_is_told = false;
win32::WindowsClient g_client;

// Standard error belongs to the program's results. Developers get the library's words when they ask for them.
GLogWriterOutput WriteLog(GLogLevelFlags level, const GLogField* fields, gsize count, gpointer data) {
    const bool wanted = std::getenv("G_MESSAGES_DEBUG") != nullptr || (level & G_LOG_FLAG_FATAL) != 0;
    return wanted ? g_log_writer_default(level, fields, count, data) : G_LOG_WRITER_HANDLED;
}

#ifdef GDK_WINDOWING_X11

void NoteLoss(::Display*, void*) {
    g_display = Display::kLost;
}

// Left to itself, the library ends the process with the connection. From libX11 1.7 on a connection that is
// broken answers every further call with nothing.
void SurviveLoss(GdkDisplay* display) {
    if (!GDK_IS_X11_DISPLAY(display)) return;
    XSetIOErrorHandler([](::Display*) { return 0; });
    XSetIOErrorExitHandler(gdk_x11_display_get_xdisplay(display), NoteLoss, nullptr);
}

// Whether the server has closed its end, though nobody has asked it for anything since.
bool IsConnectionBroken() {
    GdkDisplay* display = gdk_display_get_default();
    if (!GDK_IS_X11_DISPLAY(display)) return false;
    pollfd connection = {XConnectionNumber(gdk_x11_display_get_xdisplay(display)), POLLRDHUP, 0};
    return poll(&connection, 1, 0) > 0 && (connection.revents & (POLLRDHUP | POLLHUP | POLLERR)) != 0;
}

#else

void SurviveLoss(GdkDisplay*) {}

bool IsConnectionBroken() {
    return false;
}

#endif

const char* NameOfDisplay() {
    for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY"})
        if (const char* name = std::getenv(variable); name != nullptr && *name != '\0') return name;
    return nullptr;
}

} // namespace

std::string OpenDisplay(const win32::WindowsClient& client) {
    g_client = client;
    if (IsDisplayLost()) return "the display was lost";
    if (g_display == Display::kOpen) return {};
    g_log_set_writer_func(WriteLog, nullptr, nullptr);
    gtk_disable_setlocale(); // numbers and texts of the host stay as they are
    // Only X tells where the pointer and the window in front are.
    gdk_set_allowed_backends("x11,*");
    if (gtk_init_check(nullptr, nullptr) == FALSE) {
        const char* name = NameOfDisplay();
        return name == nullptr ? "there is no display; DISPLAY is not set"
                               : std::string("the display ") + name + " can't be opened";
    }
    SurviveLoss(gdk_display_get_default());
    g_display = Display::kOpen;
    return {};
}

bool IsDisplayLost() {
    if (g_display == Display::kOpen && IsConnectionBroken()) g_display = Display::kLost;
    return g_display == Display::kLost;
}

void TellDisplayLost() {
    if (!IsDisplayLost() || g_loss_is_told) return;
    g_loss_is_told = true;
    g_client.display_lost("the display was lost");
}

void DispatchMessages() {
    g_client.dispatch_messages();
}

} // namespace corvane::gtk
