// The calling thread's last error, and how this machine's errors become the platform's numbers.
#pragma once

#include "platform/win32/types.h"

DWORD GetLastError();
void SetLastError(DWORD error);

namespace win32 {

/// The platform's number for an errno value.
DWORD FromErrno(int error);

} // namespace win32
