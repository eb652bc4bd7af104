#include "platform/win32/dialogs.h"

#include "platform/fmwrapper/session.h"
#include "platform/text/utf.h"

#include <string_view>

namespace {

// Takes the next answer from the queue, whatever it is: the path of one of this kind.
std::optional<std::u16string> TakeAnswer(std::string_view kind) {
    auto& answers = fm::CurrentSession().answers;
    if (answers.empty()) return std::nullopt;
    const std::string answer = std::move(answers.front());
    answers.pop_front();
    if (!answer.starts_with(kind) || answer.size() == kind.size()) return std::nullopt;
    return utf::ToUtf16(std::string_view(answer).substr(kind.size()));
}

} // namespace

BOOL GetOpenFileNameW(OPENFILENAMEW* dialog) {
    const auto path = TakeAnswer("file:");
    if (!path || path->size() >= dialog->nMaxFile) return FALSE;
    path->copy(dialog->lpstrFile, path->size());
    dialog->lpstrFile[path->size()] = u'\0';
    return TRUE;
}

namespace win32 {

std::optional<std::u16string> BrowseForFolder(const BROWSEINFOW&) {
    return TakeAnswer("folder:");
}

} // namespace win32
