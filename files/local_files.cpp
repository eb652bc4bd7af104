#include "files/local_files.h"

#include "files/file_spec.h"
#include "platform/text/utf.h"
#include "platform/win32/drives.h"
#include "plugin/errors.h"

#include <string>

namespace corvane {
namespace {

constexpr std::size_t kDriveRootLength = 3; // "C:\"

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
    const FileLocality place = IsOnLocalDrive(native_path);
    // A letter does not tell which server it stands for.
    const bool unknown_server = place.code == 0 && !place.local && IsDrivePath(native_path);
    return unknown_server ? FileLocality{kErrorNoSuchVolume, false} : place;
}

FileLocality IsOnLocalDrive(std::string_view native_path) {
    const std::string_view root =
        IsDrivePath(native_path) ? native_path.substr(0, kDriveRootLength) : ShareRoot(native_path);
    if (root.empty()) return {kErrorNoSuchVolume, false};
    return {0, GetDriveTypeW(utf::ToUtf16(root).c_str()) != DRIVE_REMOTE};
}

} // namespace corvane
