#include "platform/win32/dialogs.h"

#include "platform/text/utf.h"
#include "platform/win32/answers.h"

#include <string_view>

namespace {

// The path of an answer of this kind.
std::optional<std::u16string> TakePath(std::string_view kind) {
    const std::string answer = win32::TakeAnswer();
    if (!answer.starts_with(kind) || answer.size() == kind.size()) return std::nullopt;
    return utf::ToUtf16(std::string_view(answer).substr(kind.size()));
}

} // namespace

BOOL GetOpenFileNameW(OPENFILENAMEW* dialog) {
    const auto path = TakePath("file:");
    if (!path || path->size() >= dialog->nMaxFile) return FALSE;
    path->copy(dialog->lpstrFile, path->size());
    dialog->lpstrFile[path->size()] = u'\0';
    return TRUE;
}

namespace win32 {

std::optional<std::u16string> BrowseForFolder(const BROWSEINFOW&) {
    return TakePath("folder:");
}

} // namespace win32
