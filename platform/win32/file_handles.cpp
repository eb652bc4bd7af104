#include "platform/win32/file_handles.h"

#include "platform/win32/descriptor.h"
#include "platform/win32/errors.h"
#include "platform/win32/mutexes.h"
#include "platform/win32/paths.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <map>
#include <sys/file.h>
#include <unistd.h>

namespace {

struct OpenFile {
    win32::Descriptor descriptor;
    dev_t device;
    ino_t inode;
    DWORD access; // as sharing bits: FILE_SHARE_READ for a handle that reads…
    DWORD share;
};

// Handles are small numbers, never used twice, so that a stale one is recognised.
std::map<std::intptr_t, OpenFile> g_files;
std::intptr_t g_next_handle = 1;

BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

// The open file of a handle; null, with the last error, when there is none.
OpenFile* FileOf(HANDLE handle) {
    const auto found = g_files.find(reinterpret_cast<std::intptr_t>(handle));
    if (found != g_files.end()) return &found->second;
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
}

DWORD SharingBits(DWORD access) {
    return ((access & GENERIC_READ) != 0 ? FILE_SHARE_READ : 0) |
           ((access & GENERIC_WRITE) != 0 ? FILE_SHARE_WRITE : 0);
}

bool IsShared(const struct stat& status, DWORD access, DWORD share) {
    return std::ranges::all_of(g_files, [&](const auto& entry) {
        const OpenFile& file = entry.second;
        if (file.device != status.st_dev || file.inode != status.st_ino) return true;
        return (access & ~file.share) == 0 && (file.access & ~share) == 0;
    });
}

// Holds the file against other processes: shared by those that let each other do what they do themselves.
// Where the file system has no locks the file stays open to all.
bool Lock(int descriptor, DWORD access, DWORD share) {
    const int kind = (access & ~share) == 0 ? LOCK_SH : LOCK_EX;
    return flock(descriptor, kind | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

DWORD MayOpen(const struct stat& status, DWORD access) {
    if (S_ISDIR(status.st_mode)) return ERROR_ACCESS_DENIED;
    if (!S_ISREG(status.st_mode)) return ERROR_NOT_SUPPORTED;
    const bool is_read_only = (status.st_mode & S_IWUSR) == 0;
    return is_read_only && (access & FILE_SHARE_WRITE) != 0 ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

int OpenFlags(DWORD access) {
    if (access == (FILE_SHARE_READ | FILE_SHARE_WRITE)) return O_RDWR;
    return access == FILE_SHARE_WRITE ? O_WRONLY : O_RDONLY;
}

// Opens the file and enters it: 0 or the error.
DWORD Open(const win32::UnixPath& item, DWORD access, DWORD share, DWORD disposition, HANDLE& handle) {
    const bool create = disposition == CREATE_NEW;
    struct stat status {};
    if (create) {
        if (item.exists) return ERROR_FILE_EXISTS;
        if (item.error != ERROR_FILE_NOT_FOUND) return item.error;
    } else {
        if (item.error != ERROR_SUCCESS) return item.error;
        if (stat(item.path.c_str(), &status) != 0) return win32::FromErrno(errno);
        if (const DWORD error = MayOpen(status, access)) return error;
    }
    constexpr mode_t kNewFile = 0666;
    const int flags = OpenFlags(access) | (create ? O_CREAT | O_EXCL : 0) | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    win32::Descriptor file(open(item.path.c_str(), flags, kNewFile));
    if (!file) return create && errno == EEXIST ? ERROR_FILE_EXISTS : win32::FromErrno(errno);
    if (fstat(file.get(), &status) != 0) return win32::FromErrno(errno);
    if (!create) {
        if (const DWORD error = MayOpen(status, access)) return error; // it may be another one by now
    }
    if (!IsShared(status, access, share) || !Lock(file.get(), access, share)) return ERROR_SHARING_VIOLATION;
    handle = reinterpret_cast<HANDLE>(g_next_handle);
    g_files.emplace(g_next_handle++, OpenFile{std::move(file), status.st_dev, status.st_ino, access, share});
    return ERROR_SUCCESS;
}

} // namespace

namespace win32 {

bool IsOpenHere(const struct stat& status) {
    return std::ranges::any_of(g_files, [&](const auto& entry) {
        return entry.second.device == status.st_dev && entry.second.inode == status.st_ino;
    });
}

} // namespace win32

HANDLE CreateFileW(const WCHAR* path, DWORD access, DWORD share, DWORD disposition) {
    HANDLE handle = INVALID_HANDLE_VALUE;
    const bool known = disposition == CREATE_NEW || disposition == OPEN_EXISTING;
    const DWORD error = known ? Open(win32::ToUnixPath(path), SharingBits(access), share, disposition, handle)
                              : ERROR_INVALID_PARAMETER;
    if (error != ERROR_SUCCESS) SetLastError(error);
    return handle;
}

BOOL CloseHandle(HANDLE handle) {
    if (win32::CloseMutex(handle)) return TRUE;
    OpenFile* file = FileOf(handle);
    if (file == nullptr) return FALSE;
    const int error = file->descriptor.Close();
    g_files.erase(reinterpret_cast<std::intptr_t>(handle));
    return error == 0 ? TRUE : Fail(win32::FromErrno(error));
}

BOOL ReadFile(HANDLE handle, void* bytes, DWORD count, DWORD* done) {
    *done = 0;
    const OpenFile* file = FileOf(handle);
    if (file == nullptr) return FALSE;
    while (*done < count) {
        const ssize_t size = read(file->descriptor.get(), static_cast<char*>(bytes) + *done, count - *done);
        if (size == 0) break;
        if (size > 0) {
            *done += static_cast<DWORD>(size);
        } else if (errno != EINTR) {
            return Fail(win32::FromErrno(errno));
        }
    }
    return TRUE;
}

BOOL WriteFile(HANDLE handle, const void* bytes, DWORD count, DWORD* written) {
    *written = 0;
    const OpenFile* file = FileOf(handle);
    if (file == nullptr) return FALSE;
    while (*written < count) {
        const ssize_t size =
            write(file->descriptor.get(), static_cast<const char*>(bytes) + *written, count - *written);
        if (size >= 0) {
            *written += static_cast<DWORD>(size);
        } else if (errno != EINTR) {
            return Fail(win32::FromErrno(errno));
        }
    }
    return TRUE;
}

BOOL SetFilePointerEx(HANDLE handle, LARGE_INTEGER distance, LARGE_INTEGER* position, DWORD method) {
    const OpenFile* file = FileOf(handle);
    if (file == nullptr) return FALSE;
    const int whence = method == FILE_BEGIN ? SEEK_SET : method == FILE_CURRENT ? SEEK_CUR : SEEK_END;
    const off_t place = lseek(file->descriptor.get(), distance.QuadPart, whence);
    if (place < 0) return Fail(win32::FromErrno(errno));
    if (position != nullptr) position->QuadPart = place;
    return TRUE;
}

BOOL GetFileSizeEx(HANDLE handle, LARGE_INTEGER* size) {
    const OpenFile* file = FileOf(handle);
    if (file == nullptr) return FALSE;
    struct stat status {};
    if (fstat(file->descriptor.get(), &status) != 0) return Fail(win32::FromErrno(errno));
    size->QuadPart = status.st_size;
    return TRUE;
}
