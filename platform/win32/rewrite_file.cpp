#include "platform/win32/rewrite_file.h"

#include "platform/win32/copy_file.h"
#include "platform/win32/descriptor.h"
#include "platform/win32/errors.h"
#include "platform/win32/paths.h"
#include "platform/win32/temporary_names.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <linux/magic.h>
#include <string>
#include <sys/vfs.h>

namespace win32 {
namespace {

int WritePart(int from, int to, const FilePart& part) {
    if (part.size == 0) return WriteAll(to, std::as_bytes(std::span(part.bytes)));
    if (lseek(from, static_cast<off_t>(part.offset), SEEK_SET) < 0) return errno;
    return CopyRange(from, to, part.size);
}

int WriteContents(int from, int to, const struct stat& status, std::span<const FilePart> parts) {
    for (const FilePart& part : parts)
        if (const int error = WritePart(from, to, part)) return error;
    if (const int error = CopyMetadata(from, to, status)) return error;
    const std::array<timespec, 2> times = {status.st_atim, {0, UTIME_NOW}};
    futimens(to, times.data()); // a file system that can't keep the time of access doesn't matter
    return 0;
}

// Whether the file system itself writes the contents of a file before the name that it takes from another.
// ext4 does so where it has its journal and its option auto_da_alloc, as it has unless somebody turns them
// off; without them nothing there is safe when the power goes. A file in memory ends with the machine.
// Waiting for the disk then only delays, by several milliseconds a file.
bool OrdersContentsBeforeNames(int file) {
    struct statfs system {};
    return fstatfs(file, &system) == 0 && (system.f_type == EXT4_SUPER_MAGIC || system.f_type == TMPFS_MAGIC);
}

bool SameTime(const timespec& a, const timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

// Whether the name still stands for the file that was read, with the contents that it had.
bool IsUnchanged(EntryAt entry, int file, const struct stat& before) {
    struct stat named {};
    struct stat opened {};
    return fstatat(entry.folder, entry.name, &named, AT_SYMLINK_NOFOLLOW) == 0 && fstat(file, &opened) == 0 &&
           named.st_dev == opened.st_dev && named.st_ino == opened.st_ino &&
           opened.st_size == before.st_size && SameTime(opened.st_mtim, before.st_mtim);
}

DWORD ReplaceBy(const std::string& unfinished, Descriptor to, EntryAt target, int from,
                const struct stat& status, std::span<const FilePart> parts) {
    if (const int error = WriteContents(from, to.get(), status, parts)) return FromErrno(error);
    if (!OrdersContentsBeforeNames(to.get()) && fsync(to.get()) != 0) return FromErrno(errno);
    if (const int error = to.Close()) return FromErrno(error);
    if (!IsUnchanged(target, from, status)) return ERROR_SHARING_VIOLATION;
    // The folder isn't synchronised: whether the old file or the new one is there after a crash is all the
    // same.
    const int moved = renameat(target.folder, unfinished.c_str(), target.folder, target.name);
    return moved == 0 ? ERROR_SUCCESS : FromErrno(errno);
}

} // namespace

DWORD RewriteFile(const WCHAR* path, std::span<const FilePart> parts) {
    const UnixPath item = ToUnixPath(path);
    if (item.error != ERROR_SUCCESS) return item.error;
    std::array<char, PATH_MAX> resolved;
    if (realpath(item.path.c_str(), resolved.data()) == nullptr) return FromErrno(errno);
    const std::string target(resolved.data());
    const std::size_t name = target.rfind('/') + 1;

    const Descriptor source(open(target.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!source || fstat(source.get(), &status) != 0) return FromErrno(errno);
    if (!S_ISREG(status.st_mode)) return ERROR_NOT_SUPPORTED;
    const Descriptor folder(open(target.substr(0, name).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder) return FromErrno(errno);
    const std::string unfinished = UnfinishedName();
    Descriptor to(openat(folder.get(), unfinished.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!to) return FromErrno(errno);
    const DWORD error = ReplaceBy(unfinished, std::move(to), {folder.get(), target.c_str() + name},
                                  source.get(), status, parts);
    if (error != ERROR_SUCCESS) unlinkat(folder.get(), unfinished.c_str(), 0);
    return error;
}

} // namespace win32
