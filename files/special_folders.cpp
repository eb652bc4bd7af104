#include "files/special_folders.h"

#include "files/default_folder.h"
#include "platform/text/utf.h"
#include "platform/win32/dialogs.h"
#include "platform/win32/errors.h"
#include "platform/win32/folders.h"
#include "plugin/errors.h"
#include "plugin/results.h"

#include <array>

namespace corvane {
namespace {

constexpr DWORD kPathCapacity = 4096;
constexpr std::size_t kRootLength = 3; // "C:\"

// Sets `spec` to the first `kept` units of the path that the platform's operation answers.
template <class Query>
std::int32_t SetFromQuery(XFileSpec& spec, Query query, std::size_t kept = std::u16string_view::npos) {
    std::array<WCHAR, kPathCapacity> path;
    const DWORD length = query(path.data(), kPathCapacity);
    if (length == 0) return static_cast<std::int32_t>(GetLastError());
    if (length >= kPathCapacity) return ERROR_INSUFFICIENT_BUFFER;
    spec.SetFromNativePathW(std::u16string_view(path.data(), length).substr(0, kept));
    return 0;
}

std::int32_t SetToApplicationFolder(XFileSpec& spec) {
    const std::int32_t code =
        SetFromQuery(spec, [](WCHAR* path, DWORD size) { return GetModuleFileNameW(nullptr, path, size); });
    spec.MoveToParent();
    return code;
}

std::int32_t SetToDesktop(XFileSpec& spec) {
    std::array<WCHAR, MAX_PATH> path{};
    if (SHGetFolderPathW(nullptr, CSIDL_DESKTOPDIRECTORY, nullptr, 0, path.data()) == S_OK)
        spec.SetFromNativePathW(path.data());
    return 0;
}

std::int32_t SetToChosenFolder(XFileSpec& spec, const WCHAR* title) {
    BROWSEINFOW dialog;
    dialog.lpszTitle = title;
    dialog.ulFlags = BIF_RETURNONLYFSDIRS | BIF_EDITBOX | BIF_NEWDIALOGSTYLE;
    const auto path = win32::BrowseForFolder(dialog);
    if (!path) return kErrorUserCancelled;
    spec.SetFromNativePathW(*path);
    return 0;
}

std::int32_t SetToFolderOfChosenFile(XFileSpec& spec, const WCHAR* title) {
    std::array<WCHAR, MAX_PATH> path{};
    const std::u16string initial_folder = DefaultFolder().GetNativePathW();
    OPENFILENAMEW dialog;
    dialog.lpstrFile = path.data();
    dialog.nMaxFile = MAX_PATH;
    dialog.lpstrInitialDir = initial_folder.c_str();
    dialog.lpstrTitle = title;
    dialog.Flags = OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_NOVALIDATE;
    if (GetOpenFileNameW(&dialog) == FALSE) return kErrorUserCancelled;
    spec.SetFromNativePathW(path.data());
    SetResultBufferText(spec.GetName());
    spec.MoveToParent();
    return 0;
}

} // namespace

std::int32_t ResolveSpecialFolder(std::string_view text, XFileSpec& spec) {
    const bool has_title = text.size() > 2 && text[2] == ':';
    const std::u16string title_text = has_title ? utf::ToUtf16(text.substr(3)) : std::u16string();
    const WCHAR* title = has_title ? title_text.c_str() : nullptr;

    switch (text.size() > 1 ? text[1] : '\0') {
    case 'A':
    case 'a': return SetToApplicationFolder(spec);
    case 'D':
    case 'd': return SetToDesktop(spec);
    case 'R':
    case 'r': return SetFromQuery(spec, GetWindowsDirectoryW, kRootLength);
    case 'S':
    case 's': return SetFromQuery(spec, GetSystemDirectoryW);
    case 'T':
    case 't': return SetFromQuery(spec, [](WCHAR* path, DWORD size) { return GetTempPathW(size, path); });
    case 'U':
    case 'u': return SetToChosenFolder(spec, title);
    case 'V':
    case 'v': return SetToFolderOfChosenFile(spec, title);
    case 'W':
    case 'w': return SetFromQuery(spec, GetWindowsDirectoryW);
    default:
        ReportError(kErrorUnrecognized, "Unrecognized code - must be A, T, D, R, S, W, V, or U");
        return kUnknownSpecialFolder;
    }
}

} // namespace corvane
