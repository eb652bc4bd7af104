// Files that movies and exports are written to.
#pragma once

#include "platform/quicktime/types.h"

#include <cstddef>
#include <span>
#include <string>

namespace qt {

/// A new file that reads what was written: its descriptor, or a code below 0. `replace` takes the place of a
/// file that is there, whose readers keep it; else such a file is dupFNErr.
int CreateFile(const std::string& path, bool replace);

/// All of the bytes, or dskFulErr, ioErr…
OSErr WriteAt(int descriptor, std::uint64_t offset, std::span<const std::byte> bytes);
/// The code of what was written but could not be kept after all: some file systems (NFS, those with quotas)
/// tell so only when a file is closed. It stays open.
OSErr CheckWrites(int descriptor);
/// As many as there are.
std::size_t ReadAt(int descriptor, std::uint64_t offset, std::span<std::byte> buffer) noexcept;

/// Code for an errno value of writing.
OSErr WriteError(int error);

} // namespace qt
