// The host's windows and the pointer, in pixels of the screen.
//
// There are three windows, one in the other: the application's, the area in it where documents lie, and the
// document in front. Where they are is asked of the display, or of the session when it has no windows.
#pragma once

#include "platform/win32/types.h"

struct POINT {
    LONG x = 0;
    LONG y = 0;
};

/// `right` and `bottom` are one past the last column and row.
struct RECT {
    LONG left = 0;
    LONG top = 0;
    LONG right = 0;
    LONG bottom = 0;
};

/// The application's window; null when there is none.
HWND GetActiveWindow();
/// The window that is in front of all others in `parent`; null when there is none, or `parent` is null.
HWND GetTopWindow(HWND parent);
/// The window with its frame; FALSE for a window that there isn't. Only the document has a rectangle.
BOOL GetWindowRect(HWND window, RECT* rectangle);
BOOL GetCursorPos(POINT* position);
