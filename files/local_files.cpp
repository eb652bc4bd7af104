#include "files/local_files.h"

#include "platform/text/utf.h"
#include "platform/win32/drives.h"
#include "plugin/errors.h"

#include <string>

namespace corvane {
namespace {

constexpr std::size_t kDriveRootLength = 3; // "C:\"

bool IsLetter(char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

bool IsDrivePath(std::string_view path) {
    return path.size() >= kDriveRootLength && IsLetter(path[0]) && path.substr(1, 2) == ":\\";
}

// "\\server\share\" at the start of the path; empty when it has no such start.
std::string_view ShareRoot(std::string_view path) {
    if (!path.starts_with("\\\\")) return {};
    const std::size_t server_end = path.find('\\', 2);
    if (server_end == std::string_view::npos || server_end == 2) return {};
    const std::size_t share_end = path.find('\\', server_end + 1);
    if (share_end == std::string_view::npos || share_end == server_end + 1) return {};
    return path.substr(0, share_end + 1);
}

} // namespace

FileLocality IsLocalFile(std::string_view native_path) {
    const bool on_drive = IsDrivePath(native_path);
    const std::string_view root = on_drive ? native_path.substr(0, kDriveRootLength) : ShareRoot(native_path);
    if (root.empty()) return {kErrorNoSuchVolume, false};
    if (GetDriveTypeW(utf::ToUtf16(root).c_str()) != DRIVE_REMOTE) return {0, true};
    // A letter does not tell which server it stands for.
    return {on_drive ? kErrorNoSuchVolume : 0, false};
}

} // namespace corvane
