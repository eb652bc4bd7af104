// Unique names for temporary files.
#pragma once

#include "platform/win32/types.h"

#include <string>

/// Creates an empty file in the folder (a native path) whose name is at most three units of `prefix`,
/// hexadecimal digits and ".tmp", and writes its path, of at most MAX_PATH units with the terminator, to
/// `path`. `unique` has to be 0. Answers a non-zero number on success, 0 with the last error else. No name is
/// given out twice by a process, nor one that another file has.
UINT GetTempFileNameW(const WCHAR* folder, const WCHAR* prefix, UINT unique, WCHAR* path);

namespace win32 {

/// A name, hidden, for an unfinished file beside the one that it is to replace. It may be taken, though
/// hardly.
std::string UnfinishedName();

} // namespace win32
