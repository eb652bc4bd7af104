#include "platform/win32/paths.h"

#include "platform/fmwrapper/session.h"
#include "platform/text/utf.h"

#include <dirent.h>
#include <memory>
#include <sys/stat.h>
#include <vector>

namespace win32 {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

bool IsSeparator(char16_t unit) {
    return unit == u'\\' || unit == u'/';
}

bool IsValidName(std::u16string_view name) {
    for (const char16_t unit : name)
        if (unit < 0x20 || std::u16string_view(u"<>:\"|?*").find(unit) != std::u16string_view::npos)
            return false;
    return true;
}

std::vector<std::u16string_view> SplitNames(std::u16string_view path) {
    std::vector<std::u16string_view> names;
    while (!path.empty()) {
        std::size_t end = 0;
        while (end < path.size() && !IsSeparator(path[end])) ++end;
        if (end > 0) names.push_back(path.substr(0, end));
        path.remove_prefix(end < path.size() ? end + 1 : end);
    }
    return names;
}

bool Exists(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

bool IsFolder(const std::string& path) {
    struct stat status {};
    return stat(path.empty() ? "/" : path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool EqualButForCase(std::string_view a, std::string_view b) {
    return utf::ToLower(a) == utf::ToLower(b);
}

// The first entry of the folder that differs from `name` in case only.
std::optional<std::string> FindIgnoringCase(const std::string& folder, std::string_view name) {
    const std::unique_ptr<DIR, CloseFolder> entries(opendir(folder.empty() ? "/" : folder.c_str()));
    if (!entries) return std::nullopt;
    while (const dirent* entry = readdir(entries.get()))
        if (EqualButForCase(entry->d_name, name)) return entry->d_name;
    return std::nullopt;
}

const fm::Drive* FindDrive(std::string_view root) {
    for (const fm::Drive& drive : fm::CurrentSession().drives)
        if (EqualButForCase(drive.root, root)) return &drive;
    return nullptr;
}

// Takes the root off the path: the drive it names, or an error.
DWORD TakeRoot(std::u16string_view& path, const fm::Drive*& drive) {
    if (path.size() >= 2 && path[1] == u':') {
        const std::string root = utf::ToUtf8(path.substr(0, 2));
        path.remove_prefix(2);
        if (!path.empty() && !IsSeparator(path[0])) return ERROR_INVALID_NAME;
        drive = FindDrive(root);
        return drive == nullptr ? ERROR_PATH_NOT_FOUND : ERROR_SUCCESS;
    }
    if (path.size() >= 2 && IsSeparator(path[0]) && IsSeparator(path[1])) {
        const auto names = SplitNames(path);
        if (names.size() < 2) return ERROR_BAD_NETPATH;
        drive = FindDrive("\\\\" + utf::ToUtf8(names[0]) + "\\" + utf::ToUtf8(names[1]));
        path.remove_prefix(static_cast<std::size_t>(names[1].data() + names[1].size() - path.data()));
        return drive == nullptr ? ERROR_BAD_NETPATH : ERROR_SUCCESS;
    }
    return ERROR_INVALID_NAME;
}

} // namespace

UnixPath ToUnixPath(std::u16string_view native) {
    const fm::Drive* drive = nullptr;
    UnixPath result;
    result.error = TakeRoot(native, drive);
    if (result.error != ERROR_SUCCESS) return result;

    std::vector<std::string> names;
    for (const std::u16string_view name : SplitNames(native)) {
        if (name == u".") continue;
        if (name == u"..") {
            if (!names.empty()) names.pop_back();
            continue;
        }
        if (!IsValidName(name)) {
            result.error = ERROR_INVALID_NAME;
            return result;
        }
        names.push_back(utf::ToUtf8(name));
    }

    std::string exact = drive->folder;
    for (const std::string& name : names) exact += "/" + name;
    if (Exists(names.empty() ? exact + "/" : exact)) {
        result.path = exact.empty() ? "/" : exact;
        result.exists = true;
        return result;
    }

    result.path = drive->folder;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (!IsFolder(result.path)) {
            result.error = ERROR_PATH_NOT_FOUND;
            return result;
        }
        std::string next = result.path + "/" + names[i];
        result.exists = Exists(next);
        if (!result.exists) {
            if (const auto found = FindIgnoringCase(result.path, names[i])) {
                next = result.path + "/" + *found;
                result.exists = true;
            } else if (i + 1 < names.size()) {
                result.error = ERROR_PATH_NOT_FOUND;
                return result;
            } else {
                result.error = ERROR_FILE_NOT_FOUND;
            }
        }
        result.path = std::move(next);
    }
    if (names.empty()) result.error = ERROR_PATH_NOT_FOUND; // the drive's own folder is gone
    return result;
}

std::optional<std::u16string> ToNativePath(std::string_view unix_path) {
    auto host_path = fm::HostPath(fm::CurrentSession().drives, unix_path);
    if (!host_path) return std::nullopt;
    // "/C:/x" is "C:\x"; "//server/share/x" is "\\server\share\x".
    if ((*host_path)[1] != '/') host_path->erase(0, 1);
    if (host_path->size() == 2) host_path->push_back('/');
    std::u16string native = utf::ToUtf16(*host_path);
    for (char16_t& unit : native)
        if (unit == u'/') unit = u'\\';
    return native;
}

} // namespace win32
