// Alerts: a message that is confirmed by one button.
#pragma once

#include "platform/win32/types.h"

#include <string_view>

inline constexpr UINT MB_OK = 0x0;
inline constexpr UINT MB_ICONINFORMATION = 0x40;
inline constexpr UINT MB_SYSTEMMODAL = 0x1000;
inline constexpr UINT MB_SETFOREGROUND = 0x10000;
inline constexpr int IDOK = 1;

/// Shows an alert with the OK button; texts are UTF-8. Without windows it is written to standard error.
int MessageBoxA(HWND owner, const char* text, const char* caption, UINT flags);

namespace win32 {

/// Shows an alert whose one button has the label given, and answers IDOK when it has been pressed. Without
/// windows, "alert: TITLE: MESSAGE [BUTTON]" on standard error counts as both.
int ShowAlert(std::string_view title, std::string_view message, std::string_view button);

} // namespace win32
