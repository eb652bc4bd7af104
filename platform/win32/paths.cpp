#include "platform/win32/paths.h"

#include "platform/fmwrapper/session.h"
#include "platform/text/utf.h"
#include "platform/win32/errors.h"
#include "platform/win32/unix_names.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <memory>
#include <vector>

namespace win32 {
namespace {

// The longest path that the platform takes, in units.
constexpr std::size_t kMaxPathLength = 32'767;

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

bool IsSeparator(char16_t unit) {
    return unit == u'\\' || unit == u'/';
}

bool IsValidName(std::u16string_view name) {
    return std::none_of(name.begin(), name.end(), [](char16_t unit) {
        return unit < 0x20 || std::u16string_view(u"<>:\"|?*").find(unit) != std::u16string_view::npos;
    });
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

// Takes ".." and "." out, as the platform does before it looks at the disk; false for an invalid name.
bool Normalise(std::vector<std::u16string_view>& names) {
    std::size_t kept = 0;
    for (const std::u16string_view name : names) {
        if (name == u"..") {
            if (kept > 0) --kept;
        } else if (!IsValidName(name)) {
            return false;
        } else if (name != u".") {
            names[kept++] = name;
        }
    }
    names.resize(kept);
    return true;
}

// Malformed bytes equal nothing but themselves.
bool EqualButForCase(std::string_view a, std::string_view b) {
    std::size_t at_a = 0;
    std::size_t at_b = 0;
    while (at_a < a.size() && at_b < b.size()) {
        const std::size_t start_a = at_a;
        const std::size_t start_b = at_b;
        if (utf::ToLower(utf::Next(a, at_a)) != utf::ToLower(utf::Next(b, at_b))) return false;
        const std::string_view bytes_a = a.substr(start_a, at_a - start_a);
        const std::string_view bytes_b = b.substr(start_b, at_b - start_b);
        if (bytes_a != bytes_b && !(utf::IsValid(bytes_a) && utf::IsValid(bytes_b))) return false;
    }
    return at_a == a.size() && at_b == b.size();
}

// Replaces `name` by the folder's first entry that differs from it in case only. 2 when there is none, 3
// when the folder is none.
DWORD FindIgnoringCase(const std::string& folder, std::string& name) {
    const std::unique_ptr<DIR, CloseFolder> entries(opendir(folder.empty() ? "/" : folder.c_str()));
    if (!entries) return errno == ENOENT || errno == ENOTDIR ? ERROR_PATH_NOT_FOUND : ERROR_FILE_NOT_FOUND;
    while (const dirent* entry = readdir(entries.get())) {
        if (!EqualButForCase(entry->d_name, name)) continue;
        name = entry->d_name;
        return ERROR_SUCCESS;
    }
    return ERROR_FILE_NOT_FOUND;
}

const fm::Drive* FindDrive(std::string_view root) {
    for (const fm::Drive& drive : fm::CurrentSession().drives)
        if (EqualButForCase(drive.root, root)) return &drive;
    return nullptr;
}

// Takes the root off the path. The drive is null, with the error, when there is no such root.
DWORD TakeRoot(std::u16string_view& path, const fm::Drive*& drive) {
    if (path.size() >= 2 && path[1] == u':' && (path.size() == 2 || IsSeparator(path[2]))) {
        drive = FindDrive(utf::ToUtf8(path.substr(0, 2)));
        path.remove_prefix(2);
        return ERROR_PATH_NOT_FOUND;
    }
    if (path.size() >= 2 && IsSeparator(path[0]) && IsSeparator(path[1])) {
        const auto names = SplitNames(path);
        if (names.size() < 2) return ERROR_BAD_NETPATH;
        drive = FindDrive("\\\\" + utf::ToUtf8(names[0]) + "\\" + utf::ToUtf8(names[1]));
        path.remove_prefix(static_cast<std::size_t>(names[1].data() + names[1].size() - path.data()));
        return ERROR_BAD_NETPATH;
    }
    // Relative to a current folder, where this machine has nothing.
    auto names = SplitNames(path);
    if (!Normalise(names)) return ERROR_INVALID_NAME;
    return names.size() == 1 ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
}

// Looks the path up: 0, or the errno.
int LookUp(UnixPath& target) {
    target.exists = lstat(target.path.empty() ? "/" : target.path.c_str(), &target.status) == 0;
    return target.exists ? 0 : errno;
}

// Walks down name by name, taking each exactly or else in another case.
UnixPath FindEntry(const std::string& folder, const std::vector<std::u16string_view>& names) {
    UnixPath result;
    result.path = folder;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string parent = result.path;
        std::string name = ToUnixName(names[i]);
        result.path.append("/").append(name);
        int error = LookUp(result);
        if (error == ENOENT) {
            result.error = FindIgnoringCase(parent, name);
            if (result.error == ERROR_FILE_NOT_FOUND && i + 1 < names.size())
                result.error = ERROR_PATH_NOT_FOUND;
            if (result.error != ERROR_SUCCESS) return result;
            result.path.resize(parent.size() + 1);
            result.path.append(name);
            error = LookUp(result);
        }
        if (error != 0) {
            result.error = FromErrno(error);
            return result;
        }
    }
    return result;
}

} // namespace

UnixPath ToUnixPath(std::u16string_view native) {
    UnixPath result;
    if (native.size() > kMaxPathLength) {
        result.error = ERROR_FILENAME_EXCED_RANGE;
        return result;
    }
    const fm::Drive* drive = nullptr;
    result.error = TakeRoot(native, drive);
    if (drive == nullptr) return result;
    std::vector<std::u16string_view> names = SplitNames(native);
    if (!Normalise(names)) {
        result.error = ERROR_INVALID_NAME;
        return result;
    }

    if (names.empty()) result.root = drive->root;
    result.path = drive->folder;
    for (const std::u16string_view name : names) {
        result.path += '/';
        result.path += ToUnixName(name);
    }
    const int error = LookUp(result);
    if (error == ENOENT && !names.empty()) return FindEntry(drive->folder, names);
    result.error = names.empty() && error == ENOENT ? ERROR_PATH_NOT_FOUND : FromErrno(error);
    if (result.path.empty()) result.path = "/";
    return result;
}

std::optional<std::u16string> ToNativePath(std::string_view unix_path) {
    if (unix_path.find('\\') != std::string_view::npos) return std::nullopt;
    auto host_path = fm::HostPath(fm::CurrentSession().drives, unix_path);
    if (!host_path) return std::nullopt;
    // "/C:/x" is "C:\x"; "//server/share/x" is "\\server\share\x".
    if ((*host_path)[1] != '/') host_path->erase(0, 1);
    if (host_path->size() == 2) host_path->push_back('/');
    std::u16string native = FromUnixName(*host_path);
    std::replace(native.begin(), native.end(), u'/', u'\\');
    return native;
}

} // namespace win32
