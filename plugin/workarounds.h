// The two switches that change how movie results and remote media are stored.
#pragma once

#include <cstdint>

namespace corvane {

enum class Workaround : std::uint8_t {
    kLinkMedia, ///< a movie result refers to a reference movie beside the movie, not to the movie itself
    kRemoteFile ///< remote media is inserted in a detour, with a warning before the first time
};

/// `value` keeps its low 15 bits: 0 off, anything else on. `warn`: a warning is due before the first use.
void SetWorkaround(Workaround which, std::uint16_t value, bool warn);
bool WorkaroundValue(Workaround which);
bool WorkaroundWarnPending(Workaround which);

/// Both on, both warnings pending.
void ResetWorkarounds();

} // namespace corvane
