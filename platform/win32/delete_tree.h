// Removing a folder with everything in it.
#pragma once

#include "platform/win32/types.h"

namespace win32 {

/// Removes the item `name` of an open folder: a folder with everything in it, anything else as it is.
/// Symbolic links are removed and never followed, special files are not opened, and what else changes in
/// the tree meanwhile does not matter: what appears is removed too, what is gone already is no error.
/// Stops at the first item that cannot be removed, with the platform's number; what is gone stays gone.
DWORD DeleteTree(int parent, const char* name);

} // namespace win32
