// Files opened through handles.
#pragma once

#include "platform/win32/types.h"

#include <cstdint>
#include <sys/stat.h>
#include <utility>

inline constexpr DWORD GENERIC_READ = 0x80000000;
inline constexpr DWORD GENERIC_WRITE = 0x40000000;

inline constexpr DWORD FILE_SHARE_READ = 1;
inline constexpr DWORD FILE_SHARE_WRITE = 2;

inline constexpr DWORD CREATE_NEW = 1;    ///< 80 when the file exists
inline constexpr DWORD OPEN_EXISTING = 3; ///< 2 when it does not

inline constexpr DWORD FILE_BEGIN = 0;
inline constexpr DWORD FILE_CURRENT = 1;
inline constexpr DWORD FILE_END = 2;

union LARGE_INTEGER {
    std::int64_t QuadPart;
};

/// The value of a handle that opens nothing.
inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(std::intptr_t{-1});

/// Opens a file by its native path; the handle is the caller's to close. What others may do with the file
/// meanwhile is what `share` names. Among the handles of this process that is exact (32 on conflict);
/// against other processes it holds as far as they use the file system's advisory locks.
///
/// INVALID_HANDLE_VALUE with the last error on failure: 2, 3, 32, 80, 123…; 5 for a folder, a file without
/// the permission, and a read-only file opened for writing; 50 for a special file, which is not opened.
HANDLE CreateFileW(const WCHAR* path, DWORD access, DWORD share, DWORD disposition);

// These answer FALSE, with the last error, on failure; 6 for a handle that is none.

BOOL CloseHandle(HANDLE handle); ///< of a file, or of a mutex (see mutexes.h)
/// Reads at the file's position; fewer bytes than asked for, down to none, at its end.
BOOL ReadFile(HANDLE handle, void* bytes, DWORD count, DWORD* done);
/// Writes at the file's position. On failure `written` tells how much got there before (112: a full disk).
BOOL WriteFile(HANDLE handle, const void* bytes, DWORD count, DWORD* written);
/// Moves the position, which `position` (may be null) receives. 87 for a place before the start.
BOOL SetFilePointerEx(HANDLE handle, LARGE_INTEGER distance, LARGE_INTEGER* position, DWORD method);
BOOL GetFileSizeEx(HANDLE handle, LARGE_INTEGER* size);

namespace win32 {

/// Sole owner of a handle of a file.
class OwnedFile {
public:
    explicit OwnedFile(HANDLE handle) : handle_(handle) {}
    OwnedFile(OwnedFile&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
    OwnedFile(const OwnedFile&) = delete;
    OwnedFile& operator=(const OwnedFile&) = delete;
    ~OwnedFile() { Close(); }

    /// False, with the last error, for data that could not be written after all.
    bool Close() {
        const HANDLE handle = std::exchange(handle_, INVALID_HANDLE_VALUE);
        return handle == INVALID_HANDLE_VALUE || CloseHandle(handle) != FALSE;
    }

    [[nodiscard]] HANDLE get() const { return handle_; }
    explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }

private:
    HANDLE handle_;
};

/// True when a handle of this process holds the file of that status open.
bool IsOpenHere(const struct stat& status);

} // namespace win32
