// Attribute bits of files and folders.
#pragma once

#include "platform/win32/types.h"

#include <optional>
#include <string>
#include <sys/stat.h>

inline constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
inline constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x1; ///< no write permission for the owner
inline constexpr DWORD FILE_ATTRIBUTE_HIDDEN = 0x2;
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;      ///< a symbolic link to a folder counts
inline constexpr DWORD FILE_ATTRIBUTE_ARCHIVE = 0x20;        ///< every ordinary file
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;         ///< set alone, where no other bit is
inline constexpr DWORD FILE_ATTRIBUTE_REPARSE_POINT = 0x400; ///< a symbolic link

/// Attributes of the item at a native path; INVALID_FILE_ATTRIBUTES when they can't be read, with the last
/// error: 2 no such item, 3 a folder on the way is missing, 5, 53 no such share, 123 invalid name…
DWORD GetFileAttributesW(const WCHAR* path);

namespace win32 {

/// The attribute bits that a file server has noted with the entry at a Unix path, in the extended attribute
/// user.DOSATTRIB; nullopt when it has noted none.
std::optional<DWORD> StoredAttributes(const std::string& unix_path);

/// Attributes of the entry at a Unix path, given its own status (lstat). Hidden is a name that begins with
/// ".", or one that a file server has noted as hidden.
DWORD AttributesOf(const struct stat& status, const std::string& unix_path);

} // namespace win32
