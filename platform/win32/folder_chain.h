// The way down a folder tree of any depth, with a fixed number of open descriptors.
#pragma once

#include "platform/win32/descriptor.h"

#include <cstddef>
#include <deque>
#include <sys/types.h>

namespace win32 {

/// The folders from a tree's root to the one at hand. Only the innermost ones stay open; an outer one is
/// opened again through ".." when the way leads back to it, and must then be the same folder as before: a
/// folder that somebody moves elsewhere in the meantime ends the walk and never leads it out of the tree.
class FolderChain {
public:
    /// Enters a folder, the root first: 0 or an errno, with the chain as it was.
    int Enter(Descriptor folder);

    /// Back to the folder before: 0 or an errno (ESTALE when it is not to be found again).
    int Leave();

    /// The innermost folder; -1 in an empty chain.
    [[nodiscard]] int folder() const { return levels_.empty() ? -1 : levels_.back().folder.get(); }
    [[nodiscard]] std::size_t depth() const { return levels_.size(); }

private:
    struct Level {
        Descriptor folder;
        dev_t device;
        ino_t inode;
    };

    std::deque<Level> levels_;
};

/// Opens the folder `name`, never through a symbolic link; empty, with errno set, on failure.
Descriptor OpenFolder(int parent, const char* name);

} // namespace win32
