#include "ui/gtk/desk.h"

#include "platform/win32/keyboard.h"

#include <gtk/gtk.h>

#ifdef GDK_WINDOWING_X11

#include <X11/Xatom.h>
#include <X11/keysym.h>
#include <array>
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

struct Pointer {
    bool is_known = false;
    int x = 0;
    int y = 0;
    unsigned pressed = 0; // buttons and modifier keys
};

Pointer ReadPointer(Display* display) {
    ::Window root = None;
    ::Window child = None;
    int x_in_window = 0;
    int y_in_window = 0;
    Pointer pointer;
    pointer.is_known = XQueryPointer(display, XDefaultRootWindow(display), &root, &child, &pointer.x,
                                     &pointer.y, &x_in_window, &y_in_window, &pointer.pressed) != 0;
    return pointer;
}

bool IsKeyDown(Display* display, KeySym symbol) {
    std::array<char, 32> keys{}; // a bit for each key
    XQueryKeymap(display, keys.data());
    const unsigned code = XKeysymToKeycode(display, symbol);
    return (static_cast<unsigned>(keys.at(code / 8)) >> (code % 8) & 1U) != 0;
}

// Null where there is another kind of display.
Display* OpenedDisplay() {
    GdkDisplay* display = gdk_display_get_default();
    return GDK_IS_X11_DISPLAY(display) ? gdk_x11_display_get_xdisplay(display) : nullptr;
}

} // namespace

std::optional<win32::PointerAndWindow> ReadPointerAndWindow() {
    Display* display = OpenedDisplay();
    if (display == nullptr) return std::nullopt;
    const ErrorTrap trap(gdk_display_get_default());
    const Pointer pointer = ReadPointer(display);
    if (!pointer.is_known) return std::nullopt;
    win32::PointerAndWindow desk;
    desk.pointer = {pointer.x, pointer.y};
    const ::Window root = XDefaultRootWindow(display);
    if (const ::Window active = ActiveWindow(display, root); active != None)
        desk.window = FrameOf(display, root, active);
    return desk;
}

bool IsDown(int key) {
    Display* display = OpenedDisplay();
    if (display == nullptr) return false;
    switch (key) {
    case VK_LBUTTON: return (ReadPointer(display).pressed & Button1Mask) != 0;
    case VK_RBUTTON: return (ReadPointer(display).pressed & Button3Mask) != 0;
    case VK_CONTROL: return (ReadPointer(display).pressed & ControlMask) != 0;
    case VK_ESCAPE: return IsKeyDown(display, XK_Escape);
    case VK_OEM_PERIOD: return IsKeyDown(display, XK_period);
    default: return false;
    }
}

} // namespace corvane::gtk

#else

namespace corvane::gtk {

std::optional<win32::PointerAndWindow> ReadPointerAndWindow() {
    return std::nullopt;
}

bool IsDown(int) {
    return false;
}

} // namespace corvane::gtk

#endif
