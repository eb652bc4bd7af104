// Single files and folders: make, delete, and what is known of them.
#pragma once

#include "platform/win32/attributes.h"
#include "platform/win32/file_times.h"
#include "platform/win32/types.h"

struct WIN32_FILE_ATTRIBUTE_DATA {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime; ///< the last write's where the file system keeps none
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
};

enum GET_FILEEX_INFO_LEVELS { GetFileExInfoStandard };

// Paths are native. These answer FALSE with the last error on failure.

/// Makes one folder: 183 when something stands there, 3 when its parent is missing, 123, 206…
BOOL CreateDirectoryW(const WCHAR* path);

/// Deletes a file, or a symbolic link as such. 2, 3; 5 for a folder and for a read-only file; 32 while this
/// process has the file open.
BOOL DeleteFileW(const WCHAR* path);

/// A symbolic link answers for what it leads to.
BOOL GetFileAttributesExW(const WCHAR* path, GET_FILEEX_INFO_LEVELS level, WIN32_FILE_ATTRIBUTE_DATA* data);
