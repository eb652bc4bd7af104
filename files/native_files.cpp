#include "files/native_files.h"

#include "platform/win32/drives.h"
#include "platform/win32/errors.h"
#include "platform/win32/file_handles.h"
#include "platform/win32/find_files.h"
#include "platform/win32/shell_execute.h"
#include "platform/win32/shell_link.h"
#include "platform/win32/shell_operations.h"
#include "plugin/errors.h"

#include <array>

namespace corvane::native {
namespace {

constexpr std::size_t kLongestPath = 2048;

std::int32_t PlatformError() {
    return static_cast<std::int32_t>(::GetLastError());
}

std::u16string WithoutLastSeparator(const std::u16string& path) {
    return path.ends_with(u'\\') ? path.substr(0, path.size() - 1) : path;
}

// A path without separators at its end, and where its last name begins. A name next to a doubled separator
// has one of the other kind in it ("/x").
struct LastName {
    explicit LastName(const std::u16string& whole)
        : path(whole.substr(0, whole.find_last_not_of(kSeparators) + 1)),
          begin(path.find_last_of(kSeparators) + 1) {}

    static constexpr std::u16string_view kSeparators = u"\\/";
    std::u16string path;
    std::size_t begin;
};

bool Exists(const std::u16string& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// Runs a shell operation on one item. The list of paths that the shell takes ends with one more zero.
std::int32_t ShellOperation(UINT function, const std::u16string& source_path, const std::u16string& target,
                            FILEOP_FLAGS flags) {
    const std::u16string source_list = WithoutLastSeparator(source_path) + u'\0';
    const std::u16string target_list = target + u'\0';
    SHFILEOPSTRUCTW operation;
    operation.wFunc = function;
    operation.pFrom = source_list.c_str();
    operation.pTo = target_list.c_str();
    operation.fFlags = flags;
    return SHFileOperationW(&operation);
}

class FolderSearch {
public:
    explicit FolderSearch(const std::u16string& pattern)
        : handle_(FindFirstFileW(pattern.c_str(), &entry_)) {}
    FolderSearch(const FolderSearch&) = delete;
    FolderSearch& operator=(const FolderSearch&) = delete;
    ~FolderSearch() {
        if (handle_ != INVALID_HANDLE_VALUE) FindClose(handle_);
    }

    [[nodiscard]] bool HasEntry() const { return handle_ != INVALID_HANDLE_VALUE && has_entry_; }
    [[nodiscard]] const WIN32_FIND_DATAW& entry() const { return entry_; }
    void Step() { has_entry_ = FindNextFileW(handle_, &entry_) != FALSE; }

private:
    WIN32_FIND_DATAW entry_;
    HANDLE handle_;
    bool has_entry_ = true;
};

} // namespace

OperationPath GetOperationPath(const XFileSpec& spec) {
    OperationPath item;
    item.path = spec.GetNativePathW();
    if (item.path.size() > kLongestPath) {
        item.code = static_cast<std::int32_t>(ERROR_INSUFFICIENT_BUFFER);
        return item;
    }
    const DWORD attributes = GetFileAttributesW(item.path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        item.code = PlatformError();
        return item;
    }
    item.is_folder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return item;
}

std::int32_t CopyItem(const std::u16string& source_path, const std::u16string& folder_path, bool replace,
                      const std::u16string& target_name) {
    constexpr FILEOP_FLAGS kFlags = FOF_SILENT | FOF_NOCONFIRMMKDIR | FOF_NOERRORUI;
    const std::u16string target = folder_path + target_name;
    if (replace) return ShellOperation(FO_COPY, source_path, target, kFlags | FOF_NOCONFIRMATION);
    const LastName own(source_path);
    if (Exists(target_name.empty() ? folder_path + own.path.substr(own.begin) : target))
        return kCopyTargetExists;
    const auto code = static_cast<DWORD>(ShellOperation(FO_COPY, source_path, target, kFlags));
    const bool stands_there = code == DE_FLDDESTISFILE || code == DE_FILEDESTISFLD;
    return stands_there ? kCopyTargetExists : static_cast<std::int32_t>(code);
}

std::int32_t MoveItem(const std::u16string& source_path, const std::u16string& folder_path) {
    return ShellOperation(FO_MOVE, source_path, folder_path, FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOERRORUI);
}

std::int32_t RenameItem(const std::u16string& path, const std::u16string& new_name) {
    const LastName old(path);
    return ShellOperation(FO_RENAME, old.path, old.path.substr(0, old.begin) + new_name, 0);
}

std::int32_t DeleteItem(const std::u16string& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return PlatformError();
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return native::DeleteFile(path);
    return ShellOperation(FO_DELETE, path, {}, FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOERRORUI);
}

std::int32_t CreateFolder(const std::u16string& folder_path, const std::u16string& name) {
    return CreateDirectoryW((folder_path + name).c_str()) != FALSE ? 0 : PlatformError();
}

void ListEntries(const std::u16string& folder_path,
                 const std::function<void(std::u16string_view, DWORD)>& take) {
    for (FolderSearch search(folder_path + u"*.*"); search.HasEntry(); search.Step())
        take(search.entry().cFileName, search.entry().dwFileAttributes);
}

ItemAttributes GetItemAttributes(const std::u16string& path) {
    ItemAttributes item;
    if (GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &item.data) == FALSE)
        item.code = PlatformError();
    return item;
}

std::int32_t CreateShortcut(const std::u16string& target_path, const std::u16string& shortcut_path,
                            const std::u16string& description) {
    return win32::SaveShellLink({target_path, description}, shortcut_path);
}

std::int32_t OpenItem(const std::u16string& path) {
    constexpr std::intptr_t kLargestFailure = 32;
    return reinterpret_cast<std::intptr_t>(ShellExecuteW(path.c_str())) > kLargestFailure ? 0
                                                                                          : kErrorOpenFailed;
}

std::u16string ListDisks() {
    std::array<char16_t, 26 * 4 + 1> roots; // "C:\", its zero, for every letter
    const DWORD length = GetLogicalDriveStringsW(roots.size(), roots.data());
    std::u16string text(roots.data(), length > 0 ? length - 1 : 0);
    for (char16_t& unit : text)
        if (unit == u'\0') unit = u'|';
    return text;
}

std::int32_t DeleteFile(const std::u16string& path) {
    return DeleteFileW(path.c_str()) != FALSE ? 0 : PlatformError();
}

} // namespace corvane::native
