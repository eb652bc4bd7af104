#include "tests/ui/managed_window.h"

#include <gtest/gtest.h>

#include <vector>

#include <X11/Xlib.h> // last, for its macros

#include <X11/Xatom.h>

namespace corvane::test {

struct ManagedWindow::State {
    Display* display;
    ::Window window;

    void Put(::Window target, const char* name, Atom type, const std::vector<long>& items) const {
        XChangeProperty(display, target, XInternAtom(display, name, False), type, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(items.data()), static_cast<int>(items.size()));
    }
};

ManagedWindow::ManagedWindow(const fm::Rectangle& inside, const fm::Rectangle& borders) {
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) {
        ADD_FAILURE() << "no display";
        return;
    }
    const ::Window root = XDefaultRootWindow(display);
    const ::Window window = XCreateSimpleWindow(display, root, inside.left, inside.top,
                                                static_cast<unsigned>(inside.right - inside.left),
                                                static_cast<unsigned>(inside.bottom - inside.top), 0, 0, 0);
    state_ = std::make_unique<State>(State{display, window});
    state_->Put(window, "_NET_FRAME_EXTENTS", XA_CARDINAL,
                {borders.left, borders.right, borders.top, borders.bottom});
    state_->Put(root, "_NET_ACTIVE_WINDOW", XA_WINDOW, {static_cast<long>(window)});
    XMapWindow(display, window);
    XSync(display, False);
}

ManagedWindow::~ManagedWindow() {
    if (state_ == nullptr) return;
    Display* display = state_->display;
    XDeleteProperty(display, XDefaultRootWindow(display), XInternAtom(display, "_NET_ACTIVE_WINDOW", False));
    XCloseDisplay(display); // and the window with it
}

} // namespace corvane::test
