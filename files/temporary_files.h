// Temporary files, new files, and folders that can be written to.
#pragma once

#include "files/file_spec.h"

#include <cstdint>
#include <string_view>

namespace corvane {

inline constexpr std::int32_t kFolderIsReadOnly = -10000;

/// A fresh name in the user's temporary folder, ending in `extension` (UTF-8, with its point: ".wav"). Only
/// the name is made: the caller creates, uses and deletes the file. -1 when there is no temporary folder, -2
/// when no name can be had in it.
std::int32_t MakeTemporaryFile(XFileSpec& file, std::string_view extension);

/// Deletes the file; 0 or the platform's number.
std::int32_t DeleteFileOf(const XFileSpec& file);

/// Creates an empty file; 0 or the platform's number.
std::int32_t CreateFileOf(const XFileSpec& file);

/// The same; -61 when the folder may not be written to, -48 when the name is taken, else the
/// platform's number.
std::int32_t CreateNewFile(const XFileSpec& file);

struct FolderWritable {
    std::int32_t code = 0; ///< -1407: no folder
    bool writable = false;
};

/// Tries to write a file of a name of its own in the folder, and removes it.
FolderWritable IsFolderWritable(const XFileSpec& folder);

/// The folder that holds the item, if it can be written to; else -10000.
std::int32_t GetWritableParent(const XFileSpec& item, XFileSpec& folder);

} // namespace corvane
