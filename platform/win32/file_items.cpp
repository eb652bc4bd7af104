#include "platform/win32/file_items.h"

#include "platform/win32/errors.h"
#include "platform/win32/file_handles.h"
#include "platform/win32/paths.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

BOOL Answer(DWORD error) {
    if (error == ERROR_SUCCESS) return TRUE;
    SetLastError(error);
    return FALSE;
}

DWORD DeleteEntry(const win32::UnixPath& item) {
    if (item.error != ERROR_SUCCESS) return item.error;
    if (S_ISDIR(item.status.st_mode)) return ERROR_ACCESS_DENIED;
    if (!S_ISLNK(item.status.st_mode)) {
        if ((item.status.st_mode & S_IWUSR) == 0) return ERROR_ACCESS_DENIED;
        if (win32::IsOpenHere(item.status)) return ERROR_SHARING_VIOLATION;
    }
    return unlink(item.path.c_str()) == 0 ? ERROR_SUCCESS : win32::FromErrno(errno);
}

timespec TimeOf(const statx_timestamp& time) {
    return {time.tv_sec, time.tv_nsec};
}

} // namespace

BOOL CreateDirectoryW(const WCHAR* path) {
    const win32::UnixPath item = win32::ToUnixPath(path);
    if (item.exists) return Answer(ERROR_ALREADY_EXISTS);
    if (item.error != ERROR_FILE_NOT_FOUND) return Answer(item.error);
    constexpr mode_t kAllByUmask = 0777;
    return Answer(mkdir(item.path.c_str(), kAllByUmask) == 0 ? ERROR_SUCCESS : win32::FromErrno(errno));
}

BOOL DeleteFileW(const WCHAR* path) {
    return Answer(DeleteEntry(win32::ToUnixPath(path)));
}

BOOL GetFileAttributesExW(const WCHAR* path, GET_FILEEX_INFO_LEVELS, WIN32_FILE_ATTRIBUTE_DATA* data) {
    const win32::UnixPath item = win32::ToUnixPath(path);
    if (item.error != ERROR_SUCCESS) return Answer(item.error);
    constexpr unsigned kWanted = STATX_BASIC_STATS | STATX_BTIME;
    struct statx status {};
    // A link that leads nowhere has only itself to tell of.
    if (statx(AT_FDCWD, item.path.c_str(), 0, kWanted, &status) != 0 &&
        statx(AT_FDCWD, item.path.c_str(), AT_SYMLINK_NOFOLLOW, kWanted, &status) != 0)
        return Answer(win32::FromErrno(errno));
    const bool has_birth_time = (status.stx_mask & STATX_BTIME) != 0;
    data->dwFileAttributes = win32::AttributesOf(item.status, item.path);
    data->ftCreationTime = win32::ToFileTime(TimeOf(has_birth_time ? status.stx_btime : status.stx_mtime));
    data->ftLastAccessTime = win32::ToFileTime(TimeOf(status.stx_atime));
    data->ftLastWriteTime = win32::ToFileTime(TimeOf(status.stx_mtime));
    data->nFileSizeHigh = static_cast<DWORD>(status.stx_size >> 32);
    data->nFileSizeLow = static_cast<DWORD>(status.stx_size);
    return TRUE;
}
