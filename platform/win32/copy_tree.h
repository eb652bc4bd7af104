// Copying a folder with everything in it.
#pragma once

#include "platform/win32/copy_file.h"
#include "platform/win32/types.h"

namespace win32 {

/// Copies the item `from`: a file or symbolic link as CopyFileTo does, a folder with everything in it, of
/// any depth. A folder that stands at `to` is filled up: files of the same name are replaced, names that
/// differ in case only count as the same unless the source has both. Symbolic links are copied as links and
/// never followed, in the source and in the target. What comes or goes in the source meanwhile may be
/// missing in the copy.
///
/// Stops at the first item that can't be copied; what is copied stays. Codes: those of CopyFileTo; 0x71 when
/// source and target are one folder; 0x76 when the target lies inside the source (nothing is touched);
/// 0x7E when something else than a folder stands where a folder has to go.
DWORD CopyTree(EntryAt from, EntryAt to);

/// True when the open folder is the folder `ancestor`, or lies anywhere inside it.
bool LiesInside(int folder, const struct stat& ancestor);

} // namespace win32
