#include "host/commands/input_lines.h"

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace host {

InputLines::InputLines(std::function<void()> before_reading) : before_reading_(std::move(before_reading)) {}

std::optional<std::string_view> InputLines::Next() {
    while (true) {
        const auto end = buffer_.find('\n', scanned_);
        if (end != std::string::npos) {
            std::string_view line = std::string_view(buffer_).substr(begin_, end - begin_);
            begin_ = scanned_ = end + 1;
            if (line.ends_with('\r')) line.remove_suffix(1);
            return line;
        }
        scanned_ = buffer_.size();
        if (scanned_ - begin_ < kMaxLine && Fill()) continue;
        if (begin_ == buffer_.size()) return std::nullopt;
        return std::string_view(buffer_).substr(std::exchange(begin_, buffer_.size()));
    }
}

bool InputLines::Fill() {
    constexpr std::size_t kPiece = std::size_t{64} << 10;
    if (ended_) return false;
    before_reading_();
    buffer_.erase(0, begin_);
    scanned_ -= begin_;
    begin_ = 0;
    const std::size_t size = buffer_.size();
    buffer_.resize(size + kPiece);
    ssize_t count = 0;
    do {
        count = ::read(STDIN_FILENO, buffer_.data() + size, kPiece);
    } while (count < 0 && errno == EINTR);
    ended_ = count <= 0;
    buffer_.resize(size + (ended_ ? 0 : static_cast<std::size_t>(count)));
    return !ended_;
}

} // namespace host
