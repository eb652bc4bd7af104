// Native paths ("C:\Data\x.wav", "\\server\share\x") and the Unix paths behind them.
#pragma once

#include "platform/win32/types.h"

#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace win32 {

/// Where a native path leads on this machine.
struct UnixPath {
    DWORD error = ERROR_SUCCESS; ///< 2, 3, 5, 53 (no such share), 123 (invalid name), 206 (too long)…
    std::string path;            ///< absolute; usable with error 0, and with 2 to create the item
    std::string root; ///< "C:" or "\\server\share" when the path leads to that root itself, else empty
    bool exists = false;
    struct stat status {}; ///< of the entry itself (lstat), when it exists
};

/// Maps an absolute native path through the session's drives. "\" and "/" both separate names; "." and ".."
/// are taken out; a trailing separator is dropped. Names are found exactly, else as the first entry that
/// differs in case only; a last name that does not exist is kept as given, for its caller to create. A
/// missing folder on the way gives 3. A path without drive or share leads nowhere: 3, or 2 for a single name.
UnixPath ToUnixPath(std::u16string_view native);

/// Native path of an absolute Unix path, through the drive that covers it most closely; nullopt when no
/// drive does, and for a name with a "\" in it. A drive's own folder gives its root with a trailing "\".
std::optional<std::u16string> ToNativePath(std::string_view unix_path);

} // namespace win32
