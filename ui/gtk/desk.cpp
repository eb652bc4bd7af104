#include "ui/gtk/desk.h"

#include <gtk/gtk.h>

#ifdef GDK_WINDOWING_X11

#include <X11/Xatom.h>
#include <gdk/gdkx.h>
#include <memory>
#include <vector>

namespace corvane::gtk {
namespace {

struct FreeX {
    void operator()(void* memory) const { XFree(memory); }
};

// Calls about a window of another program, which may close it at any moment.
class ErrorTrap {
public:
    explicit ErrorTrap(GdkDisplay* display) : display_(display) { gdk_x11_display_error_trap_push(display_); }
    ~ErrorTrap() { gdk_x11_display_error_trap_pop_ignored(display_); }
    ErrorTrap(const ErrorTrap&) = delete;
    ErrorTrap& operator=(const ErrorTrap&) = delete;

private:
    GdkDisplay* display_;
};

// A property that is a list of 32-bit items; they arrive as longs.
std::vector<long> ReadProperty(Display* display, ::Window window, const char* name, Atom type, long most) {
    const Atom atom = XInternAtom(display, name, True);
    if (atom == None) return {};
    Atom actual_type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char* data = nullptr;
    if (XGetWindowProperty(display, window, atom, 0, most, False, type, &actual_type, &format, &count, &rest,
                           &data) != Success ||
        data == nullptr)
        return {};
    const std::unique_ptr<unsigned char, FreeX> owned(data);
    if (actual_type != type || format != 32) return {};
    const auto* items = static_cast<const long*>(static_cast<const void*>(data));
    return {items, items + count};
}

// As the window manager says; without one, the window that gets the keys.
::Window ActiveWindow(Display* display, ::Window root) {
    const auto active = ReadProperty(display, root, "_NET_ACTIVE_WINDOW", XA_WINDOW, 1);
    if (!active.empty()) return static_cast<::Window>(active[0]);
    ::Window focus = None;
    int revert = 0;
    XGetInputFocus(display, &focus, &revert);
    return focus == static_cast<::Window>(PointerRoot) || focus == root ? None : focus;
}

std::optional<fm::Rectangle> FrameOf(Display* display, ::Window root, ::Window window) {
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(display, window, &attributes) == 0) return std::nullopt;
    int left = 0;
    int top = 0;
    ::Window child = None;
    if (XTranslateCoordinates(display, window, root, 0, 0, &left, &top, &child) == 0) return std::nullopt;
    fm::Rectangle frame = {left, top, left + attributes.width, top + attributes.height};
    const auto borders = ReadProperty(display, window, "_NET_FRAME_EXTENTS", XA_CARDINAL, 4);
    if (borders.size() == 4) { // left, right, top, bottom
        frame.left -= static_cast<std::int32_t>(borders[0]);
        frame.right += static_cast<std::int32_t>(borders[1]);
        frame.top -= static_cast<std::int32_t>(borders[2]);
        frame.bottom += static_cast<std::int32_t>(borders[3]);
    }
    return frame;
}

} // namespace

std::optional<win32::PointerAndWindow> ReadPointerAndWindow() {
    GdkDisplay* gdk_display = gdk_display_get_default();
    if (!GDK_IS_X11_DISPLAY(gdk_display)) return std::nullopt;
    const ErrorTrap trap(gdk_display);
    Display* display = gdk_x11_display_get_xdisplay(gdk_display);
    const ::Window root = XDefaultRootWindow(display);
    ::Window under_root = None;
    ::Window under_child = None;
    int x = 0;
    int y = 0;
    int window_x = 0;
    int window_y = 0;
    unsigned buttons = 0;
    if (XQueryPointer(display, root, &under_root, &under_child, &x, &y, &window_x, &window_y, &buttons) == 0)
        return std::nullopt;
    win32::PointerAndWindow desk;
    desk.pointer = {x, y};
    if (const ::Window active = ActiveWindow(display, root); active != None)
        desk.window = FrameOf(display, root, active);
    return desk;
}

} // namespace corvane::gtk

#else

namespace corvane::gtk {

std::optional<win32::PointerAndWindow> ReadPointerAndWindow() {
    return std::nullopt;
}

} // namespace corvane::gtk

#endif
