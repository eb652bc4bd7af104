#include "platform/win32/errors.h"

#include <cerrno>

namespace {

thread_local DWORD t_last_error = ERROR_SUCCESS;

} // namespace

DWORD GetLastError() {
    return t_last_error;
}

void SetLastError(DWORD error) {
    t_last_error = error;
}

namespace win32 {

DWORD FromErrno(int error) {
    switch (error) {
    case 0: return ERROR_SUCCESS;
    case ENOENT: return ERROR_FILE_NOT_FOUND;
    case ENOTDIR: return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EISDIR: return ERROR_ACCESS_DENIED;
    case EEXIST: return ERROR_ALREADY_EXISTS;
    case ENOTEMPTY: return ERROR_DIR_NOT_EMPTY;
    case ENOSPC:
    case EDQUOT: return ERROR_DISK_FULL;
    case EMFILE:
    case ENFILE: return ERROR_TOO_MANY_OPEN_FILES;
    case ENOMEM: return ERROR_NOT_ENOUGH_MEMORY;
    case EBUSY:
    case ETXTBSY: return ERROR_SHARING_VIOLATION;
    case EXDEV: return ERROR_NOT_SAME_DEVICE;
    case EIO: return ERROR_IO_DEVICE;
    case ELOOP: return ERROR_CANT_RESOLVE_FILENAME;
    case ENAMETOOLONG: return ERROR_FILENAME_EXCED_RANGE;
    case EINVAL: return ERROR_INVALID_PARAMETER;
    case EFBIG: return ERROR_FILE_TOO_LARGE;
    case EBADF: return ERROR_INVALID_HANDLE;
    case EROFS: return ERROR_WRITE_PROTECT;
    case ENOTSUP:
    case ENOSYS:
    case ENXIO: return ERROR_NOT_SUPPORTED;
    default: return ERROR_GEN_FAILURE;
    }
}

} // namespace win32
