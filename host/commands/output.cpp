#include "host/commands/output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace host {

Output::Output() : terminal_(::isatty(STDOUT_FILENO) == 1) {}

void Output::EndPiece() {
    constexpr std::size_t kPiece = std::size_t{64} << 10;
    if (terminal_ || buffer_.size() >= kPiece) Flush();
}

void Output::Flush() {
    std::string_view rest = buffer_;
    while (good_ && !rest.empty()) {
        const ssize_t count = ::write(STDOUT_FILENO, rest.data(), rest.size());
        if (count >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            std::fprintf(stderr, "corvane: cannot write: %s\n", std::strerror(errno));
            good_ = false;
        }
    }
    buffer_.clear();
}

} // namespace host
