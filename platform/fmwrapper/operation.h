// Frame of every data-interface operation: failures on demand, and no exception past the interface.
#pragma once

#include "platform/fmwrapper/fault.h"

#include <new>
#include <type_traits>

namespace fm {

/// Runs `body` unless the operation has to fail; a failure answers a zero value and sets the status. `body`
/// reports a failure of its own by throwing Refused.
struct Refused {};

template <class Body>
auto Operation(const char* name, FM_Status* status, Body body) -> std::invoke_result_t<Body> {
    using Result = std::invoke_result_t<Body>;
    if (!Fails(name, status)) {
        try {
            return body();
        } catch (const std::bad_alloc&) {
            *status = kFM_StatusNoMemory;
        } catch (...) {
            *status = kFM_StatusFailed;
        }
    }
    if constexpr (!std::is_void_v<Result>) return Result{};
}

/// A deletion releases its object even when it is told to fail, so that no leak comes from the test itself.
template <class Object>
void Delete(const char* name, Object* object, FM_Status* status) {
    Fails(name, status);
    delete object;
}

} // namespace fm
