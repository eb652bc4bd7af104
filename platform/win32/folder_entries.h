// The entries of an open folder, read in large blocks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace win32 {

struct FolderEntry {
    std::uint64_t inode;
    unsigned char type; ///< DT_REG, DT_DIR…; DT_UNKNOWN where the file system does not say
    const char* name;   ///< zero-terminated, in the reader's buffer
};

/// Reads folders one after the other into one buffer. "." and ".." are left out.
class FolderReader {
public:
    FolderReader();

    /// The next block of the folder's entries, good until the next call; an empty block is the end.
    /// Entries that come or go while the folder is read may be missing or may be there. The descriptor is
    /// the caller's, and is read from its position on.
    std::span<const FolderEntry> NextBlock(int folder);

    /// errno of the latest block; 0 after a good one.
    [[nodiscard]] int error() const { return error_; }

private:
    std::unique_ptr<std::byte[]> buffer_;
    std::vector<FolderEntry> entries_;
    int error_ = 0;
};

/// The type of an entry that came as DT_UNKNOWN, asked of the entry itself; DT_UNKNOWN when it is gone.
unsigned char TypeOf(int folder, const FolderEntry& entry);

} // namespace win32
