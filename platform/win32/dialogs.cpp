#include "platform/win32/dialogs.h"

#include "platform/fmwrapper/session.h"
#include "platform/text/utf.h"

#include <string_view>

namespace {

// Takes the next answer from the queue, whatever it is. An empty queue cancels.
std::string TakeAnswer() {
    auto& answers = fm::CurrentSession().answers;
    if (answers.empty()) return "cancel";
    std::string answer = std::move(answers.front());
    answers.pop_front();
    return answer;
}

// The path of an answer of this kind.
std::optional<std::u16string> TakePath(std::string_view kind) {
    const std::string answer = TakeAnswer();
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

std::optional<std::string> AskForSettings() {
    constexpr std::string_view kSettings = "set:";
    const std::string answer = TakeAnswer();
    if (answer == "ok") return std::string();
    if (!answer.starts_with(kSettings)) return std::nullopt;
    return answer.substr(kSettings.size());
}

} // namespace win32
