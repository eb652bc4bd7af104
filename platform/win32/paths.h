// Native paths ("C:\Data\x.wav", "\\server\share\x") and the Unix paths behind them.
#pragma once

#include "platform/win32/types.h"

#include <optional>
#include <string>
#include <string_view>

namespace win32 {

/// Where a native path leads on this machine.
struct UnixPath {
    DWORD error = ERROR_SUCCESS; ///< 2, 3, 53 (no such share), 123 (invalid name); else the path is usable
    std::string path;            ///< absolute
    bool exists = false;
};

/// Maps an absolute native path through the session's drives. "\" and "/" both separate names; "." and ".."
/// are taken out; a trailing separator is dropped. Names are found exactly, else as the first entry that
/// differs in case only; a last name that does not exist is kept as given, for its caller to create. A
/// missing folder on the way gives 3.
UnixPath ToUnixPath(std::u16string_view native);

/// Native path of an absolute Unix path, through the drive that covers it most closely; nullopt when no
/// drive does. A drive's own folder gives its root with a trailing "\".
std::optional<std::u16string> ToNativePath(std::string_view unix_path);

} // namespace win32
