// Copying one file or symbolic link, with everything that belongs to it.
#pragma once

#include "platform/win32/types.h"

#include <cstddef>
#include <sys/stat.h>

namespace win32 {

/// An entry of an open folder.
struct EntryAt {
    int folder;
    const char* name;
};

/// Copies a file's contents between two open files, from the start of both: shared blocks where the file
/// system offers them, holes kept. `status` is the source's. 0 or an errno.
int CopyContents(int from, int to, const struct stat& status);

/// Copies up to `limit` bytes, or what there is, from one file's position to the other's, and moves both on.
/// 0 or an errno.
int CopyRange(int from, int to, std::size_t limit);

/// Gives an open file or folder the owner (as root), mode, extended attributes and times of `from`. What the
/// file system of `to` cannot hold, or the user may not set, is left out. 0, or the errno of a disk that is
/// full or out of order.
int CopyMetadata(int from, int to, const struct stat& status);

/// Owner (as root) and times of a symbolic link, as far as the file system keeps them.
void CopyLinkMetadata(EntryAt link, const struct stat& status);

/// Copies an ordinary file, or a symbolic link as a link, and replaces what else stands at `to`; the old
/// file stays whole until the new one is complete, and on failure. Codes: the platform's number; 50 for a
/// special file, which is not opened; 0x71 when both are one file; 0x78 when the source may not be read;
/// 0x80 when a folder stands at `to`.
DWORD CopyFileTo(EntryAt from, EntryAt to);

} // namespace win32
