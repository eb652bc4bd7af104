#include "plugin/drawing_port.h"

namespace corvane {
namespace {

constexpr Rect kBounds = {.top = 0, .left = 0, .bottom = 1, .right = 1};

qt::OwnedGWorld g_port;

} // namespace

OSErr CreateDrawingPort() {
    GWorldPtr port = nullptr;
    const OSErr error = NewGWorld(&port, 0, kBounds);
    g_port.reset(port);
    if (error == noErr) SetGWorld(port);
    return error;
}

void DisposeDrawingPort() {
    g_port.reset();
}

GWorldPtr DrawingPort() {
    return g_port.get();
}

} // namespace corvane
