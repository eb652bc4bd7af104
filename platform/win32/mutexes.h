// Mutexes, and waiting for them. Any thread may call.
#pragma once

#include "platform/win32/types.h"

inline constexpr DWORD INFINITE = 0xFFFF'FFFF;
inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_TIMEOUT = 258;
inline constexpr DWORD WAIT_FAILED = 0xFFFF'FFFF;
inline constexpr DWORD ERROR_NOT_OWNER = 288;

/// A mutex of this process, closed by CloseHandle once nobody holds it or waits. `initial_owner`: the calling
/// thread holds it. Attributes and names are not supported: both null (50). Null on failure.
HANDLE CreateMutexA(const void* attributes, BOOL initial_owner, const char* name);

/// Takes the mutex, at once where the thread has it already: each wait needs its release. WAIT_OBJECT_0,
/// WAIT_TIMEOUT, or WAIT_FAILED with the last error (6).
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);

/// FALSE with the last error: 288 where another thread has it or nobody, 6.
BOOL ReleaseMutex(HANDLE handle);

namespace win32 {

/// Closes the handle if it is a mutex's.
bool CloseMutex(HANDLE handle);

} // namespace win32
