#include "platform/win32/folder_chain.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace win32 {
namespace {

constexpr std::size_t kOpenLevels = 32;

} // namespace

Descriptor OpenFolder(int parent, const char* name) {
    return Descriptor(openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

int FolderChain::Enter(Descriptor folder) {
    struct stat status {};
    if (fstat(folder.get(), &status) != 0) return errno;
    levels_.push_back({std::move(folder), status.st_dev, status.st_ino});
    if (levels_.size() > kOpenLevels) levels_[levels_.size() - kOpenLevels - 1].folder.Close();
    return 0;
}

int FolderChain::Leave() {
    if (levels_.size() > 1) {
        Level& outer = levels_[levels_.size() - 2];
        if (!outer.folder) {
            Descriptor found = OpenFolder(levels_.back().folder.get(), "..");
            struct stat status {};
            if (!found || fstat(found.get(), &status) != 0) return errno;
            if (status.st_dev != outer.device || status.st_ino != outer.inode) return ESTALE;
            outer.folder = std::move(found);
        }
    }
    levels_.pop_back();
    return 0;
}

} // namespace win32
