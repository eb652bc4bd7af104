#include "platform/quicktime/ports.h"

#include <algorithm>
#include <array>
#include <new>

namespace {

constexpr std::int16_t kScreenDepth = 32;
constexpr std::array<std::int16_t, 7> kDepths = {1, 2, 4, 8, 16, 24, 32};

GWorldPtr g_current_port = nullptr;

} // namespace

OSErr NewGWorld(GWorldPtr* port, std::int16_t depth, const Rect& bounds) {
    *port = nullptr;
    if (depth == 0) depth = kScreenDepth;
    if (bounds.right <= bounds.left || bounds.bottom <= bounds.top) return paramErr;
    if (std::ranges::find(kDepths, depth) == kDepths.end()) return paramErr;
    try {
        *port = std::make_unique<GWorld>(GWorld{bounds, depth}).release();
    } catch (const std::bad_alloc&) {
        return memFullErr;
    }
    return noErr;
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
