// Timers whose procedures run on the host's thread: a firing posts a message to a hidden window, and the
// procedure runs when the host pumps its queue. All operations are the host thread's.
#pragma once

#include <cstdint>

namespace corvane {

struct EventLoopTimer;
using LoopTimerProcedure = void (*)(EventLoopTimer* timer, void* user_data);

/// A record of the timer service, which owns it.
struct EventLoopTimer {
    std::uint32_t tag = 0;
    std::uint32_t event_loop = 0;
    double fire_delay = 0; ///< seconds
    double interval = 0;   ///< seconds
    LoopTimerProcedure procedure = nullptr;
    void* user_data = nullptr;
    std::uint32_t system_timer = 0;
    std::uint32_t periodic = 0;
    bool posted = false; ///< a firing waits in the queue; another one would only crowd it
};

/// The timer is null without a code when the service could not start.
struct InstalledTimer {
    std::int32_t code = 0;
    EventLoopTimer* timer = nullptr;
};

/// The one event loop.
std::uint32_t MainLoopId();

/// Installs a timer that fires after `fire_delay` seconds (0: after 1 ms) and, with an interval above 0, goes
/// on firing in that rhythm: the interval itself counts for nothing else. -1 when the system has no timer
/// left, -108 without memory.
InstalledTimer InstallLoopTimer(std::uint32_t event_loop, double fire_delay, double interval,
                                LoopTimerProcedure procedure, void* user_data);

/// Removes a timer, also from inside a procedure; what it has posted is not delivered any more. -50 for a
/// record that is not installed.
std::int32_t RemoveLoopTimer(EventLoopTimer* timer);

} // namespace corvane
