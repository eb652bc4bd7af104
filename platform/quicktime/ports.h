// Offscreen drawing ports, and which of them is current.
#pragma once

#include "platform/quicktime/types.h"

#include <memory>

/// An offscreen colour port.
struct GWorld {
    Rect bounds;
    std::int16_t depth; ///< bits per pixel
};
using GWorldPtr = GWorld*;

/// Makes a port, which the caller disposes of. paramErr for empty bounds or a depth other than 0 (the
/// screen's: 32), 1, 2, 4, 8, 16, 24 and 32; memFullErr. `port` is null then.
OSErr NewGWorld(GWorldPtr* port, std::int16_t depth, const Rect& bounds);
/// Disposing of the current port leaves none current. Null is allowed.
void DisposeGWorld(GWorldPtr port);

void GetGWorld(GWorldPtr* port); ///< the current port; null at start
void SetGWorld(GWorldPtr port);

namespace qt {

struct GWorldDisposer {
    void operator()(GWorldPtr port) const { DisposeGWorld(port); }
};

/// Owner of a port.
using OwnedGWorld = std::unique_ptr<GWorld, GWorldDisposer>;

/// Makes a port current for the time of a scope.
class CurrentPort {
public:
    explicit CurrentPort(GWorldPtr port) {
        GetGWorld(&previous_);
        SetGWorld(port);
    }
    CurrentPort(const CurrentPort&) = delete;
    CurrentPort& operator=(const CurrentPort&) = delete;
    ~CurrentPort() { SetGWorld(previous_); }

private:
    GWorldPtr previous_ = nullptr;
};

} // namespace qt
