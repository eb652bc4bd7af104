// Enumerating a folder.
#pragma once

#include "platform/win32/types.h"

struct WIN32_FIND_DATAW {
    /// Directory, hidden and reparse point only: the others would cost a look at every entry, and are to be
    /// had from GetFileAttributesW. So would hidden entries without a leading ".": in a folder of more than
    /// a thousand entries they are found when a file server has left its note on the folder itself or on any
    /// of the first thousand, as it does on whatever it makes.
    DWORD dwFileAttributes;
    WCHAR cFileName[MAX_PATH];
};

/// Begins to enumerate the entries that the pattern, a folder's native path and "\*" or "\*.*", finds: all of
/// them, in the file system's order, "." and ".." left out. INVALID_HANDLE_VALUE, with the last error, when
/// there is nothing to find (2), the folder is missing (3), none (267) or not to be read (5). The handle is
/// the caller's to close.
HANDLE FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATAW* data);

/// The next entry. FALSE at the end (last error 18) and on failure. Entries that come or go meanwhile may be
/// missing or may be there.
BOOL FindNextFileW(HANDLE search, WIN32_FIND_DATAW* data);

BOOL FindClose(HANDLE search);
