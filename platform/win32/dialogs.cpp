#include "platform/win32/dialogs.h"

#include "platform/text/utf.h"
#include "platform/win32/answers.h"
#include "platform/win32/paths.h"
#include "platform/win32/unix_names.h"
#include "platform/win32/windows_module.h"

#include <string_view>

namespace {

std::string Utf8(const WCHAR* text) {
    return text == nullptr ? "" : utf::ToUtf8(text);
}

// Why a person's choice can't be taken.
std::string Refusal(const std::string& unix_path, std::size_t capacity) {
    const auto native = win32::ToNativePath(unix_path);
    const DWORD error = native ? win32::ToUnixPath(*native).error : ERROR_INVALID_NAME;
    if (error == ERROR_INVALID_NAME)
        return "This is not on any of the drives, or its name can't be used there.";
    if (error != ERROR_SUCCESS) return "There is no such file or folder.";
    return native->size() < capacity ? "" : "The path is too long.";
}

// Lets the person choose a path whose native form has less than `capacity` units.
std::optional<std::u16string> ChoosePath(const win32::WindowsModule& windows, win32::PathWindow window,
                                         std::size_t capacity) {
    window.refusal = [capacity](const std::string& path) { return Refusal(path, capacity); };
    const auto path = windows.choose_path(window);
    return path ? win32::ToNativePath(*path) : std::nullopt;
}

std::optional<std::u16string> ChooseFile(const win32::WindowsModule& windows, const OPENFILENAMEW& dialog) {
    win32::PathWindow window;
    window.title = Utf8(dialog.lpstrTitle);
    window.button = Utf8(dialog.lpstrButton);
    if (dialog.lpstrInitialDir != nullptr) {
        const win32::UnixPath folder = win32::ToUnixPath(dialog.lpstrInitialDir);
        if (folder.error == ERROR_SUCCESS) window.folder = folder.path;
    }
    return ChoosePath(windows, std::move(window), dialog.nMaxFile);
}

// The path of an answer of this kind.
std::optional<std::u16string> TakePath(std::string_view kind) {
    const std::string answer = win32::TakeAnswer();
    if (!answer.starts_with(kind) || answer.size() == kind.size()) return std::nullopt;
    return utf::ToUtf16(std::string_view(answer).substr(kind.size()));
}

} // namespace

BOOL GetOpenFileNameW(OPENFILENAMEW* dialog) {
    const win32::WindowsModule* windows = win32::OpenWindows();
    const auto path = windows != nullptr ? ChooseFile(*windows, *dialog) : TakePath("file:");
    if (!path || path->size() >= dialog->nMaxFile) return FALSE;
    path->copy(dialog->lpstrFile, path->size());
    dialog->lpstrFile[path->size()] = u'\0';
    return TRUE;
}

namespace win32 {

std::optional<std::u16string> BrowseForFolder(const BROWSEINFOW& dialog) {
    if (const WindowsModule* windows = OpenWindows()) {
        PathWindow window;
        window.title = Utf8(dialog.lpszTitle);
        window.choice = PathWindow::Choice::kFolder;
        return ChoosePath(*windows, std::move(window), std::u16string::npos);
    }
    return TakePath("folder:");
}

} // namespace win32
