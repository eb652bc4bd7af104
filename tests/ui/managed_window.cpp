#include "tests/ui/virtual_display.h"

#include <stdexcept>
#include <vector>

#include <X11/Xlib.h> // last, for its macros

#include <X11/Xatom.h>

namespace corvane::test {

std::shared_ptr<void> ShowManagedWindow(const fm::Rectangle& inside, const fm::Rectangle& borders) {
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) throw std::runtime_error("no display");
    const ::Window root = XDefaultRootWindow(display);
    const auto atom = [=](const char* name) { return XInternAtom(display, name, False); };
    const auto put = [=](::Window target, const char* name, Atom type, const std::vector<long>& items) {
        XChangeProperty(display, target, atom(name), type, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(items.data()), static_cast<int>(items.size()));
    };
    const ::Window window = XCreateSimpleWindow(display, root, inside.left, inside.top,
                                                static_cast<unsigned>(inside.right - inside.left),
                                                static_cast<unsigned>(inside.bottom - inside.top), 0, 0, 0);
    put(window, "_NET_FRAME_EXTENTS", XA_CARDINAL,
        {borders.left, borders.right, borders.top, borders.bottom});
    put(root, "_NET_ACTIVE_WINDOW", XA_WINDOW, {static_cast<long>(window)});
    XMapWindow(display, window);
    XSync(display, False);
    return {display, [=](Display*) {
                XDeleteProperty(display, root, atom("_NET_ACTIVE_WINDOW"));
                XCloseDisplay(display); // and the window with it
            }};
}

} // namespace corvane::test
