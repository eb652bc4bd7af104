// Operations on items by their native paths, as the file functions and the export of fields need them.
//
// Each answers 0, one of the plug-in's own codes that it names, or the platform's number. What an operation
// has done on the disk before it failed stays done.
#pragma once

#include "files/file_spec.h"
#include "platform/win32/file_items.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace corvane::native {

/// The target of a copy exists, and is not to be replaced.
inline constexpr std::int32_t kCopyTargetExists = 7;

/// The form of a path that the operations take: an existing folder ends with "\". At most 2,048 units (122).
struct OperationPath {
    std::int32_t code = 0;
    std::u16string path;
    bool is_folder = false;
};

OperationPath GetOperationPath(const XFileSpec& spec);

/// Copies the item into the folder, under its own name or the target name (empty: none). A folder is copied
/// with everything in it. With `replace` an item of that name is replaced; without, the answer is 7.
std::int32_t CopyItem(const std::u16string& source_path, const std::u16string& folder_path, bool replace,
                      const std::u16string& target_name);

/// Moves the item into the folder; an item of the same name there is replaced.
std::int32_t MoveItem(const std::u16string& source_path, const std::u16string& folder_path);

/// Gives the item a new name in its folder. Nothing is replaced.
std::int32_t RenameItem(const std::u16string& path, const std::u16string& new_name);

/// Removes the item for good, a folder with everything in it.
std::int32_t DeleteItem(const std::u16string& path);

/// Makes one folder in an existing one.
std::int32_t CreateFolder(const std::u16string& folder_path, const std::u16string& name);

/// Hands over name and attributes (directory, hidden) of every entry, in the platform's order. A folder that
/// can't be read has no entries.
void ListEntries(const std::u16string& folder_path,
                 const std::function<void(std::u16string_view name, DWORD attributes)>& take);

struct ItemAttributes {
    std::int32_t code = 0;
    WIN32_FILE_ATTRIBUTE_DATA data{};
};

ItemAttributes GetItemAttributes(const std::u16string& path);

/// Writes a shortcut file to the target; a file at that path is replaced. Failures are negative.
std::int32_t CreateShortcut(const std::u16string& target_path, const std::u16string& shortcut_path,
                            const std::u16string& description);

/// Opens the item as a double-click does; -34 when that fails.
std::int32_t OpenItem(const std::u16string& path);

/// The roots of all drives, joined by "|": "A:\|C:\".
std::u16string ListDisks();

/// Deletes one file.
std::int32_t DeleteFile(const std::u16string& path);

} // namespace corvane::native
