#include "platform/win32/shell_operations.h"

#include "platform/fmwrapper/session.h"
#include "platform/win32/copy_tree.h"
#include "platform/win32/delete_tree.h"
#include "platform/win32/descriptor.h"
#include "platform/win32/errors.h"
#include "platform/win32/file_items.h"
#include "platform/win32/paths.h"
#include "platform/win32/unix_names.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace win32 {
namespace {

// The text's last name.
std::u16string_view LastName(std::u16string_view native) {
    constexpr std::u16string_view kSeparators = u"\\/";
    native = native.substr(0, native.find_last_not_of(kSeparators) + 1);
    return native.substr(native.find_last_of(kSeparators) + 1);
}

// An item by its name in its open folder. The folder itself for the root of the file system.
struct Place {
    DWORD error = ERROR_SUCCESS;
    std::string path;
    std::string root;
    Descriptor folder;
    std::string name;
    std::string spelling; ///< as it was asked for: an entry that exists may differ in case
    bool exists = false;
    struct stat status {}; // of the entry itself

    [[nodiscard]] EntryAt entry() const { return {folder.get(), name.c_str()}; }
};

Place PlaceOf(std::u16string_view native) {
    UnixPath found = ToUnixPath(native);
    Place place;
    place.exists = found.exists;
    place.status = found.status;
    if (found.error != ERROR_SUCCESS && found.error != ERROR_FILE_NOT_FOUND) {
        place.error = found.error;
        return place;
    }
    place.path = std::move(found.path);
    place.root = std::move(found.root);
    const std::size_t slash = place.path.rfind('/');
    place.name = place.path.substr(slash + 1);
    if (place.name.empty()) place.name = ".";
    place.spelling = ToUnixName(LastName(native));
    if (place.spelling == "." || place.spelling == "..") place.spelling = place.name;
    place.folder =
        Descriptor(open(place.path.substr(0, slash + 1).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!place.folder) place.error = FromErrno(errno);
    return place;
}

bool IsDriveRoot(const std::string& path) {
    return path == "/" || std::ranges::any_of(fm::CurrentSession().drives,
                                              [&](const fm::Drive& drive) { return drive.folder == path; });
}

bool AreSame(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

bool AreInOneFolder(const Place& one, const Place& other) {
    struct stat first {};
    struct stat second {};
    return fstat(one.folder.get(), &first) == 0 && fstat(other.folder.get(), &second) == 0 &&
           AreSame(first, second);
}

bool AreOneEntry(const Place& one, const Place& other) {
    return one.name == other.name && AreInOneFolder(one, other);
}

// Shell number for an item that stands where another was to go.
DWORD StandsThere(const Place& place) {
    return S_ISDIR(place.status.st_mode) ? DE_FILEDESTISFLD : DE_FLDDESTISFILE;
}

DWORD MoveByCopy(const Place& from, const Place& to) {
    const DWORD error = CopyTree(from.entry(), to.entry());
    return error != ERROR_SUCCESS ? error : DeleteTree(from.folder.get(), from.name.c_str());
}

DWORD Move(const Place& from, const Place& to) {
    if (AreOneEntry(from, to)) return DE_SAMEFILE;
    const bool is_folder = S_ISDIR(from.status.st_mode);
    if (is_folder && LiesInside(to.folder.get(), from.status)) return DE_DESTSUBTREE;
    if (to.exists) {
        if (S_ISDIR(to.status.st_mode) != is_folder) return StandsThere(to);
        if (is_folder) return MoveByCopy(from, to);
        struct stat led_to {}; // by a link, which must not take the place of that
        if (S_ISLNK(from.status.st_mode) && stat(from.path.c_str(), &led_to) == 0 &&
            AreSame(led_to, to.status))
            return DE_SAMEFILE;
        // Two names of one file: a rename would leave both.
        if (AreSame(from.status, to.status)) return DeleteTree(from.folder.get(), from.name.c_str());
    }
    DWORD error = ERROR_SUCCESS;
    if (renameat(from.folder.get(), from.name.c_str(), to.folder.get(), to.name.c_str()) != 0)
        error = errno == EXDEV ? MoveByCopy(from, to) : FromErrno(errno);
    // The item replaced one whose name differs in case, and keeps its own.
    if (error == ERROR_SUCCESS && to.name != to.spelling)
        renameat2(to.folder.get(), to.name.c_str(), to.folder.get(), to.spelling.c_str(), RENAME_NOREPLACE);
    return error;
}

// A link that is named stands for what it leads to, as where it is read: in another folder a relative one
// would lead elsewhere. Only one that leads nowhere is copied itself.
DWORD Copy(const Place& from, const Place& to) {
    if (!S_ISLNK(from.status.st_mode)) return CopyTree(from.entry(), to.entry());
    if (AreOneEntry(from, to)) return DE_SAMEFILE;
    std::array<char, PATH_MAX> resolved;
    if (realpath(from.path.c_str(), resolved.data()) != nullptr)
        return CopyTree({AT_FDCWD, resolved.data()}, to.entry());
    return errno == ENOENT || errno == ELOOP ? CopyTree(from.entry(), to.entry()) : FromErrno(errno);
}

DWORD Rename(const Place& from, const Place& to) {
    if (!AreInOneFolder(from, to)) return DE_DIFFDIR;
    const std::string& name = to.spelling;
    if (from.name == name) return DE_SAMEFILE;
    if (to.exists && to.name != from.name) return StandsThere(to);
    const int folder = from.folder.get();
    if (renameat2(folder, from.name.c_str(), folder, name.c_str(), RENAME_NOREPLACE) == 0)
        return ERROR_SUCCESS;
    if (errno == EEXIST) return DE_FLDDESTISFILE;
    if (errno != EINVAL) return FromErrno(errno);
    // A file system that cannot promise to replace nothing.
    return renameat(folder, from.name.c_str(), folder, name.c_str()) == 0 ? ERROR_SUCCESS : FromErrno(errno);
}

// Makes the folders that lead to a native path, as far as they are missing.
void MakeFoldersTo(std::u16string_view native) {
    for (std::size_t end = native.find(u'\\'); end != std::u16string_view::npos;
         end = native.find(u'\\', end + 1))
        CreateDirectoryW(std::u16string(native.substr(0, end)).c_str());
}

bool IsFolder(const Place& place) {
    struct stat status {}; // a link to a folder counts
    return place.exists && fstatat(place.folder.get(), place.name.c_str(), &status, 0) == 0 &&
           S_ISDIR(status.st_mode);
}

// The item's name inside another folder. The Unix folder behind a root doesn't name it: a share has its own
// name, a drive ("D:") none that an entry may have.
std::u16string NameOf(const Place& item) {
    return item.root.empty() ? FromUnixName(item.name) : std::u16string(LastName(FromUnixName(item.root)));
}

// Where a copy or move of `from` leads: into an existing folder, else to the name given.
Place TargetOf(const Place& from, std::u16string_view native, FILEOP_FLAGS flags) {
    Place target = PlaceOf(native);
    if (target.error == ERROR_PATH_NOT_FOUND && (flags & FOF_NOCONFIRMMKDIR) != 0) {
        MakeFoldersTo(native);
        target = PlaceOf(native);
    }
    if (target.error != ERROR_SUCCESS || !IsFolder(target)) return target;
    std::u16string inside(native);
    if (inside.back() != u'\\') inside += u'\\';
    return PlaceOf(inside + NameOf(from));
}

DWORD Perform(std::u16string_view source, const SHFILEOPSTRUCTW& operation) {
    const Place from = PlaceOf(source);
    if (from.error != ERROR_SUCCESS) return from.error;
    if (!from.exists) return ERROR_FILE_NOT_FOUND;
    if (IsDriveRoot(from.path) && operation.wFunc != FO_COPY) return DE_ROOTDIR;
    if (operation.wFunc == FO_DELETE) return DeleteTree(from.folder.get(), from.name.c_str());

    const std::u16string_view native_target = operation.pTo;
    if (operation.wFunc == FO_RENAME) {
        const Place to = PlaceOf(native_target);
        return to.error != ERROR_SUCCESS ? to.error : Rename(from, to);
    }
    const Place to = TargetOf(from, native_target, operation.fFlags);
    if (to.error != ERROR_SUCCESS) return to.error;
    if (to.exists && (operation.fFlags & FOF_NOCONFIRMATION) == 0) return StandsThere(to);
    return operation.wFunc == FO_MOVE ? Move(from, to) : Copy(from, to);
}

} // namespace
} // namespace win32

int SHFileOperationW(const SHFILEOPSTRUCTW* operation) {
    DWORD error = ERROR_SUCCESS;
    for (std::u16string_view source = operation->pFrom; !source.empty() && error == ERROR_SUCCESS;
         source = source.data() + source.size() + 1)
        error = win32::Perform(source, *operation);
    return static_cast<int>(error);
}
