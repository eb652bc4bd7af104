#include "host/commands/output.h"

#include "host/commands/terminal_text.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace host {
namespace {

constexpr std::size_t kPiece = std::size_t{64} << 10;

} // namespace

Output::Output(bool raw) : terminal_(::isatty(STDOUT_FILENO) == 1), raw_(raw) {}

void Output::EndPiece() {
    if (terminal_ || buffer_.size() >= kPiece) Flush();
}

void Output::Write(std::string_view bytes) {
    if (bytes.size() < kPiece) {
        buffer_ += bytes;
        EndPiece();
    } else {
        Flush();
        WriteOut(bytes);
    }
}

void Output::Flush() {
    WriteOut(buffer_);
    buffer_.clear();
}

void Output::Complain(const std::string& text) {
    Flush();
    const std::string shown = TerminalText(text);
    std::fwrite(shown.data(), 1, shown.size(), stderr);
}

void Output::WriteOut(std::string_view bytes) {
    if (terminal_ && !raw_) {
        WriteAll(TerminalText(bytes));
    } else {
        WriteAll(bytes);
    }
}

void Output::WriteAll(std::string_view bytes) {
    while (good_ && !bytes.empty()) {
        const ssize_t count = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            std::fprintf(stderr, "corvane: cannot write: %s\n", std::strerror(errno));
            good_ = false;
        }
    }
}

} // namespace host
