// Filling blocks whole.
#pragma once

#include "platform/quicktime/handles.h"

#include <algorithm>

namespace qt {

/// The block becomes a copy of the bytes, which may not lie in it.
inline OSErr SetHandleBytes(Handle handle, std::span<const std::byte> bytes) {
    if (handle == nullptr) return paramErr;
    SetHandleSize(handle, static_cast<Size>(bytes.size()));
    const OSErr code = MemError();
    if (code == noErr) std::ranges::copy(bytes, HandleBytes(handle).begin());
    return code;
}

} // namespace qt
