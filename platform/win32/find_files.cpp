#include "platform/win32/find_files.h"

#include "platform/fmwrapper/session.h"
#include "platform/win32/attributes.h"
#include "platform/win32/descriptor.h"
#include "platform/win32/errors.h"
#include "platform/win32/file_handles.h"
#include "platform/win32/folder_entries.h"
#include "platform/win32/paths.h"
#include "platform/win32/unix_names.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace {

// Entries whose own attributes are looked at before a folder counts as not served.
constexpr int kEntriesToLookAt = 1000;

class Search {
public:
    Search(win32::Descriptor folder, std::string path)
        : folder_(std::move(folder)),
          path_(std::move(path)),
          is_served_(win32::StoredAttributes(path_).has_value()),
          left_to_look_at_(fm::CurrentSession().hidden_marks ? kEntriesToLookAt : 0) {
        if (path_.back() != '/') path_ += '/';
        folder_length_ = path_.size();
    }

    // The next entry: 0, or the platform's number, 18 at the end.
    DWORD Next(WIN32_FIND_DATAW& data) {
        if (entries_.empty()) entries_ = reader_.NextBlock(folder_.get());
        if (reader_.error() != 0) return win32::FromErrno(reader_.error());
        if (entries_.empty()) return ERROR_NO_MORE_FILES;
        const win32::FolderEntry& entry = entries_.front();
        entries_ = entries_.subspan(1);
        data.dwFileAttributes = KindOf(entry) | (IsHidden(entry.name) ? FILE_ATTRIBUTE_HIDDEN : 0);
        TakeName(entry.name, data);
        return ERROR_SUCCESS;
    }

private:
    [[nodiscard]] DWORD KindOf(const win32::FolderEntry& entry) const {
        const unsigned char type = win32::TypeOf(folder_.get(), entry);
        if (type == DT_DIR) return FILE_ATTRIBUTE_DIRECTORY;
        if (type != DT_LNK) return 0;
        struct stat target {};
        const bool is_folder = fstatat(folder_.get(), entry.name, &target, 0) == 0 && S_ISDIR(target.st_mode);
        return FILE_ATTRIBUTE_REPARSE_POINT | (is_folder ? FILE_ATTRIBUTE_DIRECTORY : 0);
    }

    bool IsHidden(const char* name) {
        if (name[0] == '.') return true;
        if (!is_served_ && left_to_look_at_-- <= 0) return false;
        path_.replace(folder_length_, std::string::npos, name);
        const std::optional<DWORD> stored = win32::StoredAttributes(path_);
        is_served_ |= stored.has_value();
        return (stored.value_or(0) & FILE_ATTRIBUTE_HIDDEN) != 0;
    }

    static void TakeName(const char* unix_name, WIN32_FIND_DATAW& data) {
        const std::u16string name = win32::FromUnixName(unix_name);
        const std::size_t length = name.copy(data.cFileName, MAX_PATH - 1);
        data.cFileName[length] = u'\0';
    }

    win32::Descriptor folder_;
    std::string path_; // the folder's, then that of the entry at hand
    std::size_t folder_length_;
    bool is_served_; // a file server has left its notes here
    int left_to_look_at_;
    win32::FolderReader reader_;
    std::span<const win32::FolderEntry> entries_;
};

// The folder of a pattern.
std::u16string_view FolderOf(std::u16string_view pattern) {
    return pattern.substr(0, pattern.rfind(u'\\') + 1);
}

HANDLE Fail(DWORD error) {
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
}

} // namespace

HANDLE FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATAW* data) {
    win32::UnixPath folder = win32::ToUnixPath(FolderOf(pattern));
    if (folder.error != ERROR_SUCCESS)
        return Fail(folder.error == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : folder.error);
    win32::Descriptor opened(open(folder.path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!opened) return Fail(errno == ENOTDIR ? ERROR_DIRECTORY : win32::FromErrno(errno));
    auto search = std::make_unique<Search>(std::move(opened), std::move(folder.path));
    const DWORD error = search->Next(*data);
    if (error != ERROR_SUCCESS) return Fail(error == ERROR_NO_MORE_FILES ? ERROR_FILE_NOT_FOUND : error);
    return search.release();
}

BOOL FindNextFileW(HANDLE search, WIN32_FIND_DATAW* data) {
    const DWORD error = static_cast<Search*>(search)->Next(*data);
    if (error == ERROR_SUCCESS) return TRUE;
    SetLastError(error);
    return FALSE;
}

BOOL FindClose(HANDLE search) {
    const std::unique_ptr<Search> closed(static_cast<Search*>(search));
    return TRUE;
}
