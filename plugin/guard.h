// The line that no exception crosses on its way to the host.
#pragma once

#include "plugin/errors.h"
#include "plugin/host_data.h"

#include <new>

namespace corvane {

/// Runs `body`, which answers a host code; an exception becomes -108 (no memory), the code of a
/// host operation that failed, or -1 (anything else).
template <class Body>
FM_Error Guarded(Body body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return kFM_ErrorOutOfMemory;
    } catch (const HostFailure& failure) {
        return failure.code();
    } catch (...) {
        return FM_Error{kErrorUnknown};
    }
}

} // namespace corvane
