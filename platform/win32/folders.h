// Folders of the system and of the user, as native paths.
#pragma once

#include "platform/win32/types.h"

inline constexpr int CSIDL_DESKTOPDIRECTORY = 0x10;
inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);

// These write a zero-terminated path of at most `size` units and answer its length without the terminator;
// when it does not fit, the size that it needs, and nothing is written; 0 on failure, with the last error.

/// "C:\Windows\System32". It need not exist.
UINT GetSystemDirectoryW(WCHAR* buffer, UINT size);
/// "C:\Windows". It need not exist.
UINT GetWindowsDirectoryW(WCHAR* buffer, UINT size);
/// TMPDIR, else /tmp, with a "\" at its end; error 3 when no drive covers it.
DWORD GetTempPathW(DWORD size, WCHAR* buffer);

/// The host application's executable; `module` is null. Answers the length, 0 on failure. Outside every drive
/// it stands in "C:\Program Files". A path that does not fit is cut, at a character boundary in the 8-bit
/// (UTF-8) form; the last error is then 122.
DWORD GetModuleFileNameW(HINSTANCE module, WCHAR* buffer, DWORD size);
DWORD GetModuleFileNameA(HINSTANCE module, char* buffer, DWORD size);

/// The user's desktop folder, for CSIDL_DESKTOPDIRECTORY; `path` has room for MAX_PATH units. E_FAIL when it
/// is unknown, lies outside every drive or is too long.
HRESULT SHGetFolderPathW(HWND owner, int folder, HANDLE token, DWORD flags, WCHAR* path);
