// Rows of the function tables: one row registers one external function.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>

namespace corvane {

/// A sound function. Its prototype is string resource 200 + id; its name is the prototype up to the "(".
struct SoundFunction {
    std::int16_t id;
    std::int16_t minimum;
    std::int16_t maximum; ///< -1: no upper limit
    std::uint32_t flags;
    FM_ExternalFunction handler;
};

/// An image or file function. Its id is the next of the common counter; a row without a handler only takes
/// an id.
struct CountedFunction {
    const char* name;
    const char* prototype;
    std::int16_t minimum;
    std::int16_t maximum;
    FM_ExternalFunction handler;
};

inline constexpr CountedFunction kReservedFunction = {nullptr, nullptr, 0, 0, nullptr};

/// Listed in every calculation dialog of the host; the second may also run on a server.
inline constexpr std::uint32_t kShownFunction = 0xFF00;
inline constexpr std::uint32_t kShownServerFunction = 0xFF01;

} // namespace corvane
