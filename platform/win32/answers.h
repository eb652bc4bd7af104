// What the session's script says in place of a person.
#pragma once

#include <string>

namespace win32 {

/// Takes the next answer from the queue, whatever it is. An empty queue cancels.
std::string TakeAnswer();

} // namespace win32
