// Windows that are never shown, and the messages that they get.
//
// One thread owns all windows: the host's. It makes and destroys them, and their procedures run on it, while
// the host pumps (see fm::Session::dispatch_messages). Any thread may post.
#pragma once

#include "platform/win32/types.h"

using ATOM = WORD;
using WNDPROC = LRESULT (*)(HWND window, UINT message, WPARAM word, LPARAM parameter);

inline constexpr UINT WM_USER = 0x0400;
inline constexpr DWORD WS_POPUP = 0x8000'0000;
inline constexpr DWORD WS_BORDER = 0x0080'0000;

inline constexpr DWORD ERROR_INVALID_WINDOW_HANDLE = 1400;
inline constexpr DWORD ERROR_CLASS_ALREADY_EXISTS = 1410;
inline constexpr DWORD ERROR_CLASS_DOES_NOT_EXIST = 1411;
inline constexpr DWORD ERROR_CLASS_HAS_WINDOWS = 1412;
inline constexpr DWORD ERROR_NOT_ENOUGH_QUOTA = 1816;

struct WNDCLASSEXA {
    UINT cbSize = sizeof(WNDCLASSEXA);
    UINT style = 0;
    WNDPROC lpfnWndProc = nullptr;
    int cbClsExtra = 0;
    int cbWndExtra = 0;
    HINSTANCE hInstance = nullptr;
    HANDLE hIcon = nullptr;
    HANDLE hCursor = nullptr;
    HANDLE hbrBackground = nullptr;
    const char* lpszMenuName = nullptr;
    const char* lpszClassName = nullptr;
    HANDLE hIconSm = nullptr;
};

/// Registers a class under its name and instance; of the rest only the procedure counts. 0 with the last
/// error (87, 1410) on failure.
ATOM RegisterClassExA(const WNDCLASSEXA* window_class);
/// FALSE with 1411 for a class that is not registered, 1412 for one that still has windows.
BOOL UnregisterClassA(const char* name, HINSTANCE instance);

/// Makes a window of a registered class; where and what it would be on a screen is not kept. Null with the
/// last error (1411) on failure.
HWND CreateWindowExA(DWORD extended_style, const char* class_name, const char* title, DWORD style, int x,
                     int y, int width, int height, HWND parent, HANDLE menu, HINSTANCE instance,
                     void* parameter);
/// Messages that wait for the window are dropped.
BOOL DestroyWindow(HWND window);

/// Adds a message to the queue. FALSE with 1400 for a window that is none, 1816 when 10,000 messages wait.
BOOL PostMessageA(HWND window, UINT message, WPARAM word, LPARAM parameter);
/// What windows do with messages that they don't know: nothing.
LRESULT DefWindowProcA(HWND window, UINT message, WPARAM word, LPARAM parameter);
