// The line that no exception crosses on its way to the host.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"

#include <new>

namespace corvane {

/// Runs `body`, which answers a host code; an exception becomes -108 (no memory) or -1 (anything else).
template <class Body>
FM_Error Guarded(Body body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return kFM_ErrorOutOfMemory;
    } catch (...) {
        return FM_Error{-1};
    }
}

} // namespace corvane
