// The logical drives of the session.
#pragma once

#include "platform/win32/types.h"

inline constexpr UINT DRIVE_NO_ROOT_DIR = 1;
inline constexpr UINT DRIVE_FIXED = 3;
inline constexpr UINT DRIVE_REMOTE = 4;

/// Writes the roots of the drives ("C:\"), by letter, each zero-terminated, and one more zero. Answers the
/// units written without that last zero; when they do not fit, the size that is needed, and nothing is
/// written; 0 when there is no drive. Shares are no drives.
DWORD GetLogicalDriveStringsW(DWORD size, WCHAR* buffer);

/// The kind of the drive or share with that root; DRIVE_NO_ROOT_DIR when there is none, or its folder is
/// gone.
UINT GetDriveTypeW(const WCHAR* root);
