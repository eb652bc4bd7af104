#include "platform/quicktime/ports.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr std::int16_t kScreenDepth = 32;
constexpr std::array<std::int16_t, 7> kDepths = {1, 2, 4, 8, 16, 24, 32};
constexpr std::size_t kPixelBytes = 4;

GWorldPtr g_current_port = nullptr;

bool IsEmpty(const Rect& bounds) {
    return bounds.right <= bounds.left || bounds.bottom <= bounds.top;
}

OSErr MakePort(GWorldPtr* port, GWorld made) {
    try {
        *port = std::make_unique<GWorld>(std::move(made)).release();
    } catch (const std::bad_alloc&) {
        return memFullErr;
    }
    return noErr;
}

} // namespace

OSErr NewGWorld(GWorldPtr* port, std::int16_t depth, const Rect& bounds) {
    *port = nullptr;
    if (depth == 0) depth = kScreenDepth;
    if (IsEmpty(bounds) || std::ranges::find(kDepths, depth) == kDepths.end()) return paramErr;
    GWorld made{.bounds = bounds, .depth = depth, .pixels = {}};
    if (depth == kScreenDepth &&
        made.pixels.Allocate(bounds.right - bounds.left, bounds.bottom - bounds.top) != noErr)
        return memFullErr;
    return MakePort(port, std::move(made));
}

OSErr QTNewGWorldFromPtr(GWorldPtr* port, OSType pixel_format, const Rect& bounds, const void* base,
                         std::size_t row_bytes) {
    *port = nullptr;
    if (IsEmpty(bounds) || base == nullptr || pixel_format != k32RGBAPixelFormat) return paramErr;
    if (row_bytes < static_cast<std::size_t>(bounds.right - bounds.left) * kPixelBytes) return paramErr;
    return MakePort(port, {bounds, kScreenDepth, {}, static_cast<const std::byte*>(base), row_bytes});
}

void DisposeGWorld(GWorldPtr port) {
    if (g_current_port == port) g_current_port = nullptr;
    const std::unique_ptr<GWorld> disposed(port);
}

void GetGWorld(GWorldPtr* port) {
    *port = g_current_port;
}

void SetGWorld(GWorldPtr port) {
    g_current_port = port;
}

namespace qt {

ComponentResult CopyShownPixels(const GWorld& port, PixelImage& image) {
    const Rect& bounds = port.bounds;
    const auto code = image.Allocate(bounds.right - bounds.left, bounds.bottom - bounds.top);
    if (code != noErr) return code;
    for (std::int32_t y = 0; y < image.height(); ++y) {
        const std::byte* shown = port.base + static_cast<std::size_t>(y) * port.row_bytes;
        std::uint32_t* row = image.Row(y);
        for (std::int32_t x = 0; x < image.width(); ++x, shown += kPixelBytes) {
            std::uint32_t word = 0; // red lowest
            std::memcpy(&word, shown, kPixelBytes);
            row[x] = Pixel(word & 0xFF, word >> 8 & 0xFF, word >> 16 & 0xFF);
        }
    }
    return noErr;
}

} // namespace qt
