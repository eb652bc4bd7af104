#include "platform/win32/copy_file.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <linux/limits.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace win32 {
namespace {

// The failures that end a copy; any other says that the target does not take this piece of metadata.
int Fatal(int result) {
    if (result == 0) return 0;
    return errno == ENOSPC || errno == EDQUOT || errno == EIO || errno == EROFS ? errno : 0;
}

// Access control lists are among the extended attributes.
int CopyExtendedAttributes(int from, int to) {
    char few[1024];
    std::vector<char> many;
    const char* names = few;
    ssize_t size = flistxattr(from, few, sizeof few);
    if (size < 0 && errno == ERANGE) {
        many.resize(XATTR_LIST_MAX);
        names = many.data();
        size = flistxattr(from, many.data(), many.size());
    }
    std::vector<char> value;
    for (const char* name = names; name - names < size; name += std::strlen(name) + 1) {
        const ssize_t length = fgetxattr(from, name, nullptr, 0);
        if (length < 0) continue;
        value.resize(static_cast<std::size_t>(length));
        const ssize_t read = fgetxattr(from, name, value.data(), value.size());
        if (read < 0) continue; // changed in between
        if (const int error = Fatal(fsetxattr(to, name, value.data(), static_cast<std::size_t>(read), 0)))
            return error;
    }
    return 0;
}

} // namespace

int CopyMetadata(int from, int to, const struct stat& status) {
    constexpr mode_t kModeBits = 07777;
    mode_t mode = status.st_mode & kModeBits;
    // The owner first: a change of owner takes set-id bits and capabilities away.
    if (geteuid() == 0) {
        if (const int error = Fatal(fchown(to, status.st_uid, status.st_gid))) return error;
    } else if (status.st_uid != geteuid()) {
        mode &= ~static_cast<mode_t>(S_ISUID | S_ISGID); // the copy is the user's own
    }
    if (const int error = Fatal(fchmod(to, mode))) return error;
    if (const int error = CopyExtendedAttributes(from, to)) return error;
    const timespec times[2] = {status.st_atim, status.st_mtim};
    return Fatal(futimens(to, times));
}

void CopyLinkMetadata(EntryAt link, const struct stat& status) {
    if (geteuid() == 0 &&
        fchownat(link.folder, link.name, status.st_uid, status.st_gid, AT_SYMLINK_NOFOLLOW) != 0)
        return;
    const timespec times[2] = {status.st_atim, status.st_mtim};
    utimensat(link.folder, link.name, times, AT_SYMLINK_NOFOLLOW);
}

} // namespace win32
