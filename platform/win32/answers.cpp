#include "platform/win32/answers.h"

#include "platform/fmwrapper/session.h"

namespace win32 {

std::string TakeAnswer() {
    auto& answers = fm::CurrentSession().answers;
    if (answers.empty()) return "cancel";
    std::string answer = std::move(answers.front());
    answers.pop_front();
    return answer;
}

} // namespace win32
