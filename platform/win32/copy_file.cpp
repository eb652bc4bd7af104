#include "platform/win32/copy_file.h"

#include "platform/win32/descriptor.h"
#include "platform/win32/errors.h"
#include "platform/win32/shell_operations.h"
#include "platform/win32/temporary_names.h"

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <string>

namespace win32 {
namespace {

constexpr int kTemporaryNames = 100;

DWORD CopyOpenFile(int from, const struct stat& status, Descriptor to) {
    int error = CopyContents(from, to.get(), status);
    if (error == 0) error = CopyMetadata(from, to.get(), status);
    const int close_error = to.Close(); // some network file systems only tell now that the disk is full
    return FromErrno(error != 0 ? error : close_error);
}

// Makes a new file at `to`: EEXIST when something is there.
DWORD MakeFile(int from, const struct stat& status, EntryAt to, int& make_error) {
    Descriptor target(openat(to.folder, to.name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    make_error = target ? 0 : errno;
    if (!target) return FromErrno(make_error);
    const DWORD error = CopyOpenFile(from, status, std::move(target));
    if (error != ERROR_SUCCESS) unlinkat(to.folder, to.name, 0);
    return error;
}

DWORD MakeLink(EntryAt from, const struct stat& status, EntryAt to, int& make_error) {
    std::string target(PATH_MAX, '\0');
    const ssize_t length = readlinkat(from.folder, from.name, target.data(), target.size());
    if (length < 0) return FromErrno(errno);
    target.resize(static_cast<std::size_t>(length));
    make_error = symlinkat(target.c_str(), to.folder, to.name) == 0 ? 0 : errno;
    if (make_error != 0) return FromErrno(make_error);
    CopyLinkMetadata(to, status);
    return ERROR_SUCCESS;
}

// Checks what stands at `to` before it is replaced.
DWORD MayReplace(const struct stat& source, EntryAt to) {
    struct stat target {};
    if (fstatat(to.folder, to.name, &target, AT_SYMLINK_NOFOLLOW) != 0)
        return errno == ENOENT ? ERROR_SUCCESS : FromErrno(errno);
    if (target.st_dev == source.st_dev && target.st_ino == source.st_ino) return DE_SAMEFILE;
    return S_ISDIR(target.st_mode) ? DE_FILEDESTISFLD : ERROR_SUCCESS;
}

// Makes the copy at `to`, or beside it under a name of its own that then takes the place of `to`.
template <class Make>
DWORD MakeOrReplace(const struct stat& source, EntryAt to, Make make) {
    int make_error = 0;
    DWORD error = make(to, make_error);
    if (make_error != EEXIST) return error;
    error = MayReplace(source, to);
    if (error != ERROR_SUCCESS) return error;
    for (int i = 0; i < kTemporaryNames; ++i) {
        const std::string name = UnfinishedName();
        error = make(EntryAt{to.folder, name.c_str()}, make_error);
        if (make_error == EEXIST) continue;
        if (error != ERROR_SUCCESS) return error;
        if (renameat(to.folder, name.c_str(), to.folder, to.name) == 0) return ERROR_SUCCESS;
        error = FromErrno(errno);
        unlinkat(to.folder, name.c_str(), 0);
        return error;
    }
    return ERROR_FILE_EXISTS;
}

} // namespace

DWORD CopyFileTo(EntryAt from, EntryAt to) {
    struct stat status {};
    if (fstatat(from.folder, from.name, &status, AT_SYMLINK_NOFOLLOW) != 0) return FromErrno(errno);
    if (S_ISLNK(status.st_mode))
        return MakeOrReplace(status, to, [&](EntryAt target, int& make_error) {
            return MakeLink(from, status, target, make_error);
        });
    if (!S_ISREG(status.st_mode)) return ERROR_NOT_SUPPORTED;

    // The entry may have become a fifo since: O_NONBLOCK keeps the opening from waiting for a writer.
    const Descriptor source(openat(from.folder, from.name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!source) return errno == EACCES || errno == EPERM ? DE_ACCESSDENIEDSRC : FromErrno(errno);
    if (fstat(source.get(), &status) != 0) return FromErrno(errno);
    if (!S_ISREG(status.st_mode)) return ERROR_NOT_SUPPORTED;
    return MakeOrReplace(status, to, [&](EntryAt target, int& make_error) {
        return MakeFile(source.get(), status, target, make_error);
    });
}

} // namespace win32
