#include "platform/win32/delete_tree.h"

#include "platform/win32/errors.h"
#include "platform/win32/folder_chain.h"
#include "platform/win32/folder_entries.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <utility>
#include <vector>

namespace win32 {
namespace {

// How often one folder is emptied when new entries keep appearing in it.
constexpr int kMaximumPasses = 100;

int RemoveEntry(int folder, const char* name, int flags) {
    return unlinkat(folder, name, flags) == 0 || errno == ENOENT ? 0 : errno;
}

class TreeRemover {
public:
    int Run(int parent, const char* name, Descriptor root) {
        if (const int error = Enter(name, std::move(root))) return error;
        while (!levels_.empty()) {
            const int error = levels_.back().folders.empty() ? Finish(parent) : Descend();
            if (error != 0) return error;
        }
        return 0;
    }

private:
    struct Level {
        std::string name;
        std::vector<std::string> folders; // those still to remove
        int passes = 0;
    };

    int Enter(std::string name, Descriptor folder) {
        if (const int error = chain_.Enter(std::move(folder))) return error;
        levels_.push_back({std::move(name), {}, 0});
        return RemoveFiles();
    }

    // Removes everything but the sub-folders from the folder at hand.
    int RemoveFiles() {
        const int folder = chain_.folder();
        Level& level = levels_.back();
        ++level.passes;
        for (auto block = reader_.NextBlock(folder); !block.empty(); block = reader_.NextBlock(folder)) {
            for (const FolderEntry& entry : block) {
                const int error =
                    TypeOf(folder, entry) == DT_DIR ? EISDIR : RemoveEntry(folder, entry.name, 0);
                if (error == EISDIR) {
                    level.folders.emplace_back(entry.name);
                } else if (error != 0) {
                    return error;
                }
            }
        }
        return reader_.error();
    }

    int Descend() {
        const std::string name = std::move(levels_.back().folders.back());
        levels_.back().folders.pop_back();
        Descriptor folder = OpenFolder(chain_.folder(), name.c_str());
        if (folder) return Enter(name, std::move(folder));
        if (errno == ENOTDIR || errno == ELOOP) return RemoveEntry(chain_.folder(), name.c_str(), 0);
        return errno == ENOENT ? 0 : errno;
    }

    // Removes the folder at hand, which should be empty now, from the one that holds it.
    int Finish(int parent) {
        const std::string name = std::move(levels_.back().name);
        const int passes = levels_.back().passes;
        if (const int error = chain_.Leave()) return error;
        levels_.pop_back();
        const int holder = levels_.empty() ? parent : chain_.folder();
        const int error = RemoveEntry(holder, name.c_str(), AT_REMOVEDIR);
        if ((error != ENOTEMPTY && error != EEXIST) || passes == kMaximumPasses) return error;

        Descriptor again = OpenFolder(holder, name.c_str());
        if (!again) return errno == ENOENT ? 0 : errno;
        const int failure = Enter(name, std::move(again));
        if (failure == 0) levels_.back().passes = passes + 1;
        return failure;
    }

    FolderChain chain_;
    FolderReader reader_;
    std::vector<Level> levels_;
};

} // namespace

DWORD DeleteTree(int parent, const char* name) {
    Descriptor folder = OpenFolder(parent, name);
    if (folder) return FromErrno(TreeRemover().Run(parent, name, std::move(folder)));
    if (errno != ENOTDIR && errno != ELOOP) return FromErrno(errno);
    return unlinkat(parent, name, 0) == 0 ? ERROR_SUCCESS : FromErrno(errno);
}

} // namespace win32
