// Version of the operating system and of the host application.
#pragma once

#include "platform/win32/types.h"

struct OSVERSIONINFOA {
    DWORD dwOSVersionInfoSize; ///< set by the caller
    DWORD dwMajorVersion;
    DWORD dwMinorVersion;
    DWORD dwBuildNumber;
    DWORD dwPlatformId;
    char szCSDVersion[128];
};

/// The version that this system stands for: 10, 0, platform 2. FALSE with error 122 for another size.
BOOL GetVersionExA(OSVERSIONINFOA* information);

/// Size in bytes of a file's version resource; 0 with error 1812 for a file that has none. Only the host
/// application's executable has one, and only when it says its version.
DWORD GetFileVersionInfoSizeA(const char* file, DWORD* handle);
/// Copies up to `size` bytes of the resource; FALSE with the last error when there is none.
BOOL GetFileVersionInfoA(const char* file, DWORD handle, DWORD size, void* data);
/// Points into the resource at a value: "\StringFileInfo\000004B0\FileVersion" is a zero-terminated text,
/// its length counted with the terminator. FALSE with error 1813 for any other name.
BOOL VerQueryValueA(const void* block, const char* name, void** value, UINT* length);
