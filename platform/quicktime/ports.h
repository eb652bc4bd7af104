// Offscreen drawing ports, and which of them is current.
#pragma once

#include "platform/quicktime/pixel_image.h"

#include <memory>

/// An offscreen colour port. Ports of 32 bits have pixels, others only bounds.
struct GWorld {
    Rect bounds;
    std::int16_t depth = 0;          ///< bits per pixel
    qt::PixelImage pixels;           ///< of the bounds' size, when the port has memory of its own
    const std::byte* base = nullptr; ///< else the memory that it shows: red, green, blue and an unused byte
    std::size_t row_bytes = 0;       ///< from row to row of that memory
};
using GWorldPtr = GWorld*;

/// Red, green, blue and a fourth byte, in this order in memory.
inline constexpr OSType k32RGBAPixelFormat = qt::Code("RGBA");

/// Makes a port, which the caller disposes of. What its pixels are is not said until they are drawn. paramErr
/// for empty bounds or a depth other than 0 (the screen's: 32), 1, 2, 4, 8, 16, 24 and 32; memFullErr also
/// for more pixels than an image may have. `port` is null then.
OSErr NewGWorld(GWorldPtr* port, std::int16_t depth, const Rect& bounds);
/// Makes a port of 32 bits that shows rows of pixels which stay the caller's and outlive it. Their fourth
/// byte has no meaning: they are opaque. paramErr for empty bounds, rows that overlap, or a pixel format
/// other than k32RGBAPixelFormat.
OSErr QTNewGWorldFromPtr(GWorldPtr* port, OSType pixel_format, const Rect& bounds, const void* base,
                         std::size_t row_bytes);
/// Disposing of the current port leaves none current. Null is allowed.
void DisposeGWorld(GWorldPtr port);

void GetGWorld(GWorldPtr* port); ///< the current port; null at start
void SetGWorld(GWorldPtr port);

namespace qt {

/// The pixels that a port shows in memory of others, as an image. codecSizeErr, memFullErr.
ComponentResult CopyShownPixels(const GWorld& port, PixelImage& image);

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
