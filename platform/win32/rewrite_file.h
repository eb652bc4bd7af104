// New contents for a file, without a moment at which it has neither the old nor the new ones.
#pragma once

#include "platform/win32/types.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace win32 {

/// A part of the new contents: bytes of the caller's, or a range of the old contents.
struct FilePart {
    std::string_view bytes;
    std::uint64_t offset = 0; ///< of a range, in the old contents
    std::uint64_t size = 0;   ///< of a range; 0: bytes
};

/// Writes the parts one behind the other into a file beside the one at the native path, which takes its place
/// once it is complete: when the machine loses its power, either the old contents or the new ones are on the
/// disk (but not on an ext4 that was made without a journal). What belongs to the file stays, as far as the
/// file system can hold it: owner, permissions, extended attributes, time of the last access; a symbolic link
/// still leads to it. Its other hard links keep the old contents.
///
/// 0 or the platform's number: 32 when somebody else has changed the file meanwhile, 50 for what is no
/// ordinary file, 112 for a full disk… With one the file is as it was, and none is left beside it.
DWORD RewriteFile(const WCHAR* path, std::span<const FilePart> parts);

} // namespace win32
