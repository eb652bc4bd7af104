#include "platform/fmwrapper/session.h"

#include "platform/text/utf.h"

#include <filesystem>

namespace fm {
namespace {

bool IsDriveRoot(std::string_view root) {
    return root.size() == 2 && utf::IsAsciiLetter(root[0]) && root[1] == ':';
}

// "\\server\share": two non-empty names.
bool IsShareRoot(std::string_view root) {
    if (root.substr(0, 2) != "\\\\") return false;
    const std::string_view names = root.substr(2);
    const auto separator = names.find('\\');
    return separator != std::string_view::npos && separator > 0 && separator + 1 < names.size() &&
           names.find('\\', separator + 1) == std::string_view::npos;
}

std::string WithSlashes(std::string text) {
    for (char& character : text)
        if (character == '\\') character = '/';
    return text;
}

} // namespace

Session& CurrentSession() {
    static Session session;
    return session;
}

std::string AbsolutePath(const std::string& path) {
    std::error_code error;
    std::filesystem::path result;
    for (const std::filesystem::path& part : std::filesystem::absolute(path, error)) {
        if (part == "..") {
            // As for the system, out of the folder that a link leads to, not of the one that it lies in.
            if (std::filesystem::is_symlink(result, error))
                result = std::filesystem::weakly_canonical(result, error);
            result = result.parent_path();
        } else if (part != ".") {
            result /= part;
        }
    }
    return result.string();
}

std::optional<Drive> ParseDrive(std::string_view text) {
    constexpr std::string_view kRemote = "remote:";
    const auto equals = text.find('=');
    if (equals == std::string_view::npos) return std::nullopt;
    Drive drive;
    drive.root = text.substr(0, equals);
    std::string_view folder = text.substr(equals + 1);
    if (IsShareRoot(drive.root)) {
        drive.remote = true;
    } else if (IsDriveRoot(drive.root)) {
        if (drive.root[0] >= 'a') drive.root[0] = static_cast<char>(drive.root[0] - 'a' + 'A');
    } else {
        return std::nullopt;
    }
    if (folder.substr(0, kRemote.size()) == kRemote) {
        drive.remote = true;
        folder.remove_prefix(kRemote.size());
    }
    if (folder.empty()) return std::nullopt;
    drive.folder = AbsolutePath(std::string(folder));
    if (!drive.folder.starts_with('/')) return std::nullopt;
    while (!drive.folder.empty() && drive.folder.back() == '/') drive.folder.pop_back();
    return drive;
}

std::optional<std::string> HostPath(const std::vector<Drive>& drives, std::string_view unix_path) {
    const Drive* closest = nullptr;
    for (const Drive& drive : drives) {
        const std::size_t length = drive.folder.size();
        const bool covers = unix_path.substr(0, length) == drive.folder &&
                            (unix_path.size() == length || unix_path[length] == '/');
        if (covers && (closest == nullptr || length > closest->folder.size())) closest = &drive;
    }
    if (closest == nullptr) return std::nullopt;
    const std::string rest(unix_path.substr(closest->folder.size()));
    const std::string root = WithSlashes(closest->root);
    return (IsDriveRoot(closest->root) ? "/" + root : root) + (rest == "/" ? "" : rest);
}

} // namespace fm
