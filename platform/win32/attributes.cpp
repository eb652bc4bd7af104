#include "platform/win32/attributes.h"

#include "platform/fmwrapper/session.h"
#include "platform/win32/errors.h"
#include "platform/win32/paths.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <string_view>
#include <sys/xattr.h>

namespace win32 {
namespace {

bool IsHidden(const std::string& unix_path) {
    const auto slash = unix_path.rfind('/');
    if (slash != std::string::npos && unix_path.size() > slash + 1 && unix_path[slash + 1] == '.')
        return true;
    return (StoredAttributes(unix_path).value_or(0) & FILE_ATTRIBUTE_HIDDEN) != 0;
}

} // namespace

// As text ("0x22"), or, since version 3, as an empty text and a little-endian record with the version at byte
// 2, flags of its valid fields at byte 8 and the attributes at byte 12.
std::optional<DWORD> StoredAttributes(const std::string& unix_path) {
    if (!fm::CurrentSession().hidden_marks) return std::nullopt;
    std::array<unsigned char, 128> value{};
    const ssize_t size = getxattr(unix_path.c_str(), "user.DOSATTRIB", value.data(), value.size());
    if (size <= 0) return std::nullopt;
    const std::string_view text(reinterpret_cast<const char*>(value.data()), static_cast<std::size_t>(size));
    if (text.starts_with("0x")) {
        DWORD attributes = 0;
        std::from_chars(text.data() + 2, text.data() + text.size(), attributes, 16);
        return attributes;
    }
    constexpr unsigned char kAttributesAreValid = 1;
    const bool is_record = text.size() >= 16 && value[0] == 0 && value[2] >= 3;
    return is_record && (value[8] & kAttributesAreValid) != 0 ? value[12] : 0;
}

DWORD AttributesOf(const struct stat& status, const std::string& unix_path) {
    DWORD attributes = 0;
    struct stat target = status;
    if (S_ISLNK(status.st_mode)) {
        attributes |= FILE_ATTRIBUTE_REPARSE_POINT;
        if (stat(unix_path.c_str(), &target) != 0) target = status; // the link leads nowhere
    }
    if (S_ISDIR(target.st_mode)) attributes |= FILE_ATTRIBUTE_DIRECTORY;
    if (S_ISREG(target.st_mode)) attributes |= FILE_ATTRIBUTE_ARCHIVE;
    if ((target.st_mode & S_IWUSR) == 0) attributes |= FILE_ATTRIBUTE_READONLY;
    if (IsHidden(unix_path)) attributes |= FILE_ATTRIBUTE_HIDDEN;
    return attributes == 0 ? FILE_ATTRIBUTE_NORMAL : attributes;
}

} // namespace win32

DWORD GetFileAttributesW(const WCHAR* path) {
    const win32::UnixPath item = win32::ToUnixPath(path);
    if (item.error != ERROR_SUCCESS) {
        SetLastError(item.error);
        return INVALID_FILE_ATTRIBUTES;
    }
    return win32::AttributesOf(item.status, item.path);
}
