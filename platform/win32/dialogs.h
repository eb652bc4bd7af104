// The open-file and folder-browse dialogs. Without windows they take the session's next answer:
// "file:NATIVE-PATH", "folder:NATIVE-PATH"; any other answer, and none, is a Cancel.
#pragma once

#include "platform/win32/types.h"

#include <optional>
#include <string>

inline constexpr DWORD OFN_HIDEREADONLY = 0x4;
inline constexpr DWORD OFN_NOCHANGEDIR = 0x8;
inline constexpr DWORD OFN_NOVALIDATE = 0x100;
inline constexpr DWORD OFN_FILEMUSTEXIST = 0x1000;
inline constexpr DWORD OFN_EXPLORER = 0x80000;
inline constexpr DWORD OFN_ENABLESIZING = 0x800000;

inline constexpr UINT BIF_RETURNONLYFSDIRS = 0x1;
inline constexpr UINT BIF_EDITBOX = 0x10;
inline constexpr UINT BIF_NEWDIALOGSTYLE = 0x40;

struct OPENFILENAMEW {
    HWND hwndOwner = nullptr;
    WCHAR* lpstrFile = nullptr; ///< receives the chosen file's native path
    DWORD nMaxFile = 0;         ///< its capacity in units, terminator included
    const WCHAR* lpstrInitialDir = nullptr;
    const WCHAR* lpstrTitle = nullptr;  ///< null: the dialog's own
    const WCHAR* lpstrButton = nullptr; ///< label of the confirming button; null: the dialog's own
    DWORD Flags = 0;                    ///< OFN_…
};

/// FALSE on Cancel, and for a path that does not fit the buffer.
BOOL GetOpenFileNameW(OPENFILENAMEW* dialog);

struct BROWSEINFOW {
    HWND hwndOwner = nullptr;
    const WCHAR* lpszTitle = nullptr; ///< null: the dialog's own
    UINT ulFlags = 0;                 ///< BIF_…
};

namespace win32 {

/// Native path of the folder that the user chose; nullopt on Cancel.
std::optional<std::u16string> BrowseForFolder(const BROWSEINFOW& dialog);

} // namespace win32
