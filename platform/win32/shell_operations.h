// The shell's operations on whole items: copy, move, rename and delete.
#pragma once

#include "platform/win32/types.h"

inline constexpr UINT FO_MOVE = 1;
inline constexpr UINT FO_COPY = 2;
inline constexpr UINT FO_DELETE = 3;
inline constexpr UINT FO_RENAME = 4;

using FILEOP_FLAGS = WORD;
inline constexpr FILEOP_FLAGS FOF_SILENT = 0x4;           ///< no progress display
inline constexpr FILEOP_FLAGS FOF_NOCONFIRMATION = 0x10;  ///< yes to all: existing items are replaced
inline constexpr FILEOP_FLAGS FOF_NOCONFIRMMKDIR = 0x200; ///< makes missing folders of the target
inline constexpr FILEOP_FLAGS FOF_NOERRORUI = 0x400;      ///< no error dialogs

// The shell's own results; every other result is the platform's number for the failure.
inline constexpr DWORD DE_SAMEFILE = 0x71;        ///< source and target are the same item
inline constexpr DWORD DE_DIFFDIR = 0x73;         ///< a rename that leads to another folder
inline constexpr DWORD DE_ROOTDIR = 0x74;         ///< the source is the root of a drive
inline constexpr DWORD DE_DESTSUBTREE = 0x76;     ///< the target lies inside the source
inline constexpr DWORD DE_ACCESSDENIEDSRC = 0x78; ///< the source may not be read
inline constexpr DWORD DE_FLDDESTISFILE = 0x7E;   ///< a file stands at the target
inline constexpr DWORD DE_FILEDESTISFLD = 0x80;   ///< a folder stands at the target

struct SHFILEOPSTRUCTW {
    HWND hwnd = nullptr;
    UINT wFunc = 0;               ///< FO_…
    const WCHAR* pFrom = nullptr; ///< native paths, each zero-terminated, ended by one more zero
    const WCHAR* pTo = nullptr;   ///< one native path, ended by two zeros; not for FO_DELETE
    FILEOP_FLAGS fFlags = 0;
};

/// Copy and move: into `pTo` when that is an existing folder, else to the name that it gives. An item of
/// the same name there is replaced; a folder is filled up instead. A move to another file system copies, and
/// deletes the source when the copy is complete. Rename: to a new name in the same folder; nothing is
/// replaced (0x7E, 0x80), but the name's case may change. Delete: for good. No operation shows a window,
/// whatever the flags say: a copy or move that has to ask, for want of FOF_NOCONFIRMATION, stops (0x7E,
/// 0x80).
///
/// Symbolic links are moved and deleted as links. A copy of one that is named is a copy of what it leads to;
/// those inside a folder are copied as links. Special files (fifo, socket, device) are moved
/// within their file system and deleted, never opened, and give 50 where they would be copied. Names keep
/// their case. Stops at the first failure; what is done stays done. 0 or the number of the failure.
int SHFileOperationW(const SHFILEOPSTRUCTW* operation);
