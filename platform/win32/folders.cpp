#include "platform/win32/folders.h"

#include "platform/fmwrapper/session.h"
#include "platform/text/utf.h"
#include "platform/win32/errors.h"
#include "platform/win32/paths.h"
#include "platform/win32/unix_names.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

namespace {

DWORD CopyPath(std::u16string_view path, WCHAR* buffer, DWORD size) {
    if (path.size() >= size) return static_cast<DWORD>(path.size() + 1);
    path.copy(buffer, path.size());
    buffer[path.size()] = u'\0';
    return static_cast<DWORD>(path.size());
}

std::string Environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

std::optional<std::u16string> ToNativeFolder(const std::string& folder) {
    const std::string absolute = fm::AbsolutePath(folder);
    return absolute.starts_with('/') ? win32::ToNativePath(absolute) : std::nullopt;
}

// The value of XDG_DESKTOP_DIR="$HOME/Desktop" in the user's folder list, quotes and escapes removed.
std::optional<std::string> ConfiguredDesktop(const std::string& home) {
    constexpr std::string_view kKey = "XDG_DESKTOP_DIR=\"";
    std::string configuration = Environment("XDG_CONFIG_HOME");
    if (configuration.empty()) configuration = home + "/.config";
    std::ifstream file(configuration + "/user-dirs.dirs");
    std::optional<std::string> desktop;
    for (std::string line; std::getline(file, line);) {
        line.erase(0, line.find_first_not_of(" \t"));
        if (!line.starts_with(kKey)) continue;
        std::string value;
        for (std::size_t i = kKey.size(); i < line.size() && line[i] != '"'; ++i) {
            if (line[i] == '\\' && i + 1 < line.size()) ++i;
            value.push_back(line[i]);
        }
        if (value.starts_with("$HOME")) value.replace(0, 5, home);
        if (value.starts_with('/')) desktop = value; // the last line counts, as for a shell
    }
    return desktop;
}

std::optional<std::u16string> DesktopFolder() {
    const std::string home = Environment("HOME");
    if (home.empty()) return std::nullopt;
    return ToNativeFolder(ConfiguredDesktop(home).value_or(home + "/Desktop"));
}

// The host application must be able to ask for its own version, so it has a path even outside every drive.
std::optional<std::u16string> ApplicationFile(HINSTANCE module) {
    const std::string& file = fm::CurrentSession().application_file;
    if (module != nullptr || file.empty()) return std::nullopt;
    if (auto native = win32::ToNativePath(file)) return native;
    return u"C:\\Program Files\\" + win32::FromUnixName(file.substr(file.rfind('/') + 1));
}

// Copies the beginning that fits, with a terminator.
template <class Unit>
DWORD CopyBeginning(std::basic_string_view<Unit> text, std::size_t fitting, Unit* buffer, DWORD size) {
    const bool whole = fitting == text.size();
    text.copy(buffer, fitting);
    buffer[fitting] = Unit();
    if (!whole) SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return whole ? static_cast<DWORD>(fitting) : size;
}

} // namespace

UINT GetSystemDirectoryW(WCHAR* buffer, UINT size) {
    return CopyPath(u"C:\\Windows\\System32", buffer, size);
}

UINT GetWindowsDirectoryW(WCHAR* buffer, UINT size) {
    return CopyPath(u"C:\\Windows", buffer, size);
}

DWORD GetTempPathW(DWORD size, WCHAR* buffer) {
    const std::string folder = Environment("TMPDIR");
    auto path = ToNativeFolder(folder.empty() ? "/tmp" : folder);
    if (!path) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return 0;
    }
    if (path->back() != u'\\') path->push_back(u'\\');
    return CopyPath(*path, buffer, size);
}

DWORD GetModuleFileNameW(HINSTANCE module, WCHAR* buffer, DWORD size) {
    const auto file = ApplicationFile(module);
    if (!file || size == 0) {
        SetLastError(file ? ERROR_INSUFFICIENT_BUFFER : ERROR_PATH_NOT_FOUND);
        return 0;
    }
    return CopyBeginning<WCHAR>(*file, std::min<std::size_t>(file->size(), size - 1), buffer, size);
}

DWORD GetModuleFileNameA(HINSTANCE module, char* buffer, DWORD size) {
    const auto file = ApplicationFile(module);
    if (!file || size == 0) {
        SetLastError(file ? ERROR_INSUFFICIENT_BUFFER : ERROR_PATH_NOT_FOUND);
        return 0;
    }
    const std::string text = utf::ToUtf8(*file);
    return CopyBeginning<char>(text, utf::CutAtCharacter(text, size - 1).size(), buffer, size);
}

HRESULT SHGetFolderPathW(HWND, int folder, HANDLE, DWORD, WCHAR* path) {
    if (folder != CSIDL_DESKTOPDIRECTORY) return E_INVALIDARG;
    const auto desktop = DesktopFolder();
    return desktop && CopyPath(*desktop, path, MAX_PATH) == desktop->size() ? S_OK : E_FAIL;
}
