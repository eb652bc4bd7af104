#pragma once

#include "platform/win32/errors.h"

/// ERROR_SUCCESS, or the last error of a call that gave nothing.
template <class Result>
DWORD ErrorOf(Result result) {
    return result ? ERROR_SUCCESS : GetLastError();
}
