// Timers of the multimedia system: their callbacks run on one thread of their own, one at a time.
#pragma once

#include "platform/win32/types.h"

#include <cstdint>

using MMRESULT = UINT;
using LPTIMECALLBACK = void (*)(UINT id, UINT message, std::uintptr_t user, std::uintptr_t reserved1,
                                std::uintptr_t reserved2);

inline constexpr UINT TIME_ONESHOT = 0;
inline constexpr UINT TIME_PERIODIC = 1;
/// The callback neither runs nor starts once timeKillEvent has returned. All timers here are of that kind.
inline constexpr UINT TIME_KILL_SYNCHRONOUS = 0x100;

inline constexpr MMRESULT TIMERR_NOERROR = 0;
inline constexpr MMRESULT MMSYSERR_INVALPARAM = 11;

/// Calls `callback` with `user` after `delay` ms, and every `delay` ms from then on if periodic. `resolution`
/// (ms) says how late a firing may come: a period shorter than it is stretched to it, but to no more than
/// 10 ms, so that timers that don't care cost little. Firings that could not be kept up with are dropped. The
/// timer's id, or 0 when there is no callback, the delay is 0 or no thread can be had.
MMRESULT timeSetEvent(UINT delay, UINT resolution, LPTIMECALLBACK callback, std::uintptr_t user, UINT flags);

/// Ends a timer, from any thread and from callbacks. Other threads must not hold what its callback waits for.
/// MMSYSERR_INVALPARAM for an id that is none, or that of a one-shot timer that has fired.
MMRESULT timeKillEvent(UINT id);
