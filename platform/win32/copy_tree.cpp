#include "platform/win32/copy_tree.h"

#include "platform/text/utf.h"
#include "platform/win32/errors.h"
#include "platform/win32/folder_chain.h"
#include "platform/win32/folder_entries.h"
#include "platform/win32/shell_operations.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace win32 {
namespace {

DWORD ReadError(int error) {
    return error == EACCES || error == EPERM ? DE_ACCESSDENIEDSRC : FromErrno(error);
}

bool HasEntry(int folder, const char* name) {
    return faccessat(folder, name, F_OK, AT_SYMLINK_NOFOLLOW) == 0;
}

// The names in a folder that was there before the copy.
class OldNames {
public:
    OldNames(FolderReader& reader, int folder) {
        for (auto block = reader.NextBlock(folder); !block.empty(); block = reader.NextBlock(folder))
            for (const FolderEntry& entry : block) names_.emplace(utf::ToLower(entry.name), entry.name);
    }

    // The name that the copy of `name` gets: that of the entry which it is to replace. An entry that differs
    // in case is taken once at most, and not when the source has that very name too: no copy of the same
    // call replaces another.
    std::string TargetName(const char* name, int source, int target) {
        if (HasEntry(target, name)) return name;
        const auto found = names_.find(utf::ToLower(name));
        if (found == names_.end() || HasEntry(source, found->second.c_str())) return name;
        return std::move(names_.extract(found).mapped());
    }

private:
    std::unordered_map<std::string, std::string> names_; // lower case, as it is
};

class TreeCopier {
public:
    DWORD Run(Descriptor source, const struct stat& status, EntryAt to) {
        DWORD error = Enter(std::move(source), status, to);
        while (error == ERROR_SUCCESS && !levels_.empty())
            error = levels_.back().folders.empty() ? Finish() : Descend();
        while (!levels_.empty()) Finish(); // those of a copy that failed are to have their modes, too
        return error;
    }

private:
    struct FolderToCopy {
        std::string name;
        std::string target_name;
    };
    struct Level {
        struct stat status;
        std::vector<FolderToCopy> folders; // those still to copy
    };

    // Makes or finds the target folder, copies all but the sub-folders into it, and notes those.
    DWORD Enter(Descriptor source, const struct stat& status, EntryAt to) {
        const bool made = mkdirat(to.folder, to.name, 0700) == 0;
        if (!made && errno != EEXIST) return FromErrno(errno);
        Descriptor target = OpenFolder(to.folder, to.name);
        if (!target) return errno == ENOTDIR || errno == ELOOP ? DE_FLDDESTISFILE : FromErrno(errno);
        int error = sources_.Enter(std::move(source));
        if (error == 0) error = targets_.Enter(std::move(target));
        if (error != 0) return FromErrno(error);
        levels_.push_back({status, {}});
        if (made) return CopyFiles([](const char* name) { return std::string(name); });
        OldNames old_names(reader_, targets_.folder());
        if (reader_.error() != 0) return FromErrno(reader_.error());
        return CopyFiles([&](const char* name) {
            return old_names.TargetName(name, sources_.folder(), targets_.folder());
        });
    }

    template <class TargetName>
    DWORD CopyFiles(TargetName target_name) {
        const int source = sources_.folder();
        for (auto block = reader_.NextBlock(source); !block.empty(); block = reader_.NextBlock(source)) {
            for (const FolderEntry& entry : block) {
                const std::string target = target_name(entry.name);
                if (TypeOf(source, entry) == DT_DIR) {
                    levels_.back().folders.push_back({entry.name, target});
                    continue;
                }
                const DWORD error = CopyListed({source, entry.name}, {targets_.folder(), target.c_str()});
                if (error != ERROR_SUCCESS) return error;
            }
        }
        return ReadError(reader_.error());
    }

    // An entry that was removed since it was listed is passed over; one that somebody put in its place
    // meanwhile is copied.
    static DWORD CopyListed(EntryAt from, EntryAt to) {
        constexpr int kMostReplacements = 10;
        DWORD error = CopyFileTo(from, to);
        for (int i = 0; error == ERROR_FILE_NOT_FOUND && i < kMostReplacements; ++i) {
            if (!HasEntry(from.folder, from.name)) return ERROR_SUCCESS;
            error = CopyFileTo(from, to);
        }
        return error == DE_SAMEFILE ? ERROR_SUCCESS : error; // a hard link of it is its copy already
    }

    DWORD Descend() {
        const FolderToCopy next = std::move(levels_.back().folders.back());
        levels_.back().folders.pop_back();
        Descriptor source = OpenFolder(sources_.folder(), next.name.c_str());
        struct stat status {};
        if (!source || fstat(source.get(), &status) != 0)
            return errno == ENOENT ? ERROR_SUCCESS : ReadError(errno);
        return Enter(std::move(source), status, {targets_.folder(), next.target_name.c_str()});
    }

    // Mode and times come last, as every new entry changes the times and the mode may forbid new entries.
    DWORD Finish() {
        const int copied = CopyMetadata(sources_.folder(), targets_.folder(), levels_.back().status);
        levels_.pop_back();
        int left = sources_.Leave();
        if (left == 0) left = targets_.Leave();
        if (left != 0) levels_.clear(); // there is no way back
        return FromErrno(copied != 0 ? copied : left);
    }

    FolderChain sources_;
    FolderChain targets_;
    FolderReader reader_;
    std::vector<Level> levels_;
};

} // namespace

bool LiesInside(int folder, const struct stat& ancestor) {
    struct stat status {};
    if (fstat(folder, &status) != 0) return false;
    Descriptor here;
    for (;;) {
        if (status.st_dev == ancestor.st_dev && status.st_ino == ancestor.st_ino) return true;
        Descriptor above(openat(here ? here.get() : folder, "..", O_PATH | O_DIRECTORY | O_CLOEXEC));
        struct stat above_status {};
        if (!above || fstat(above.get(), &above_status) != 0) return false;
        if (above_status.st_dev == status.st_dev && above_status.st_ino == status.st_ino) return false;
        status = above_status;
        here = std::move(above);
    }
}

DWORD CopyTree(EntryAt from, EntryAt to) {
    Descriptor source = OpenFolder(from.folder, from.name);
    if (!source) return errno == ENOTDIR || errno == ELOOP ? CopyFileTo(from, to) : ReadError(errno);
    struct stat status {};
    struct stat target {};
    if (fstat(source.get(), &status) != 0) return FromErrno(errno);
    if (fstatat(to.folder, to.name, &target, AT_SYMLINK_NOFOLLOW) == 0 && target.st_dev == status.st_dev &&
        target.st_ino == status.st_ino)
        return DE_SAMEFILE;
    if (LiesInside(to.folder, status)) return DE_DESTSUBTREE;
    return TreeCopier().Run(std::move(source), status, to);
}

} // namespace win32
