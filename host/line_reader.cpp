#include "host/line_reader.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace host {

LineReader::LineReader(int descriptor, std::size_t longest, std::function<void()> before_reading)
    : descriptor_(descriptor), longest_(longest), before_reading_(std::move(before_reading)) {}

std::optional<std::string_view> LineReader::Line() {
    while (true) {
        const auto end = buffer_.find('\n', scanned_);
        if (end != std::string::npos) {
            std::string_view line = std::string_view(buffer_).substr(begin_, end - begin_);
            begin_ = scanned_ = end + 1;
            if (line.ends_with('\r')) line.remove_suffix(1);
            return line;
        }
        scanned_ = buffer_.size();
        if (IsTooLong()) return std::nullopt;
        if (Fill()) continue;
        if (begin_ == buffer_.size()) return std::nullopt;
        return std::string_view(buffer_).substr(std::exchange(begin_, buffer_.size()));
    }
}

std::string LineReader::Problem(std::size_t number) const {
    if (IsTooLong())
        return "line " + std::to_string(number) + " is longer than " + std::to_string(kMaxLine >> 20) +
               " MiB";
    if (error_ != 0) return "cannot read the input: " + std::generic_category().message(error_);
    return {};
}

// How many bytes came; 0 at the end of the input.
std::size_t LineReader::ReadSome(void* buffer, std::size_t size) {
    ssize_t count = 0;
    do {
        count = ::read(descriptor_, buffer, size);
    } while (count < 0 && errno == EINTR);
    if (count < 0) error_ = errno;
    return static_cast<std::size_t>(std::max<ssize_t>(count, 0));
}

bool LineReader::Fill() {
    constexpr std::size_t kPiece = std::size_t{64} << 10;
    if (ended_) return false;
    if (before_reading_) before_reading_();
    buffer_.erase(0, begin_);
    scanned_ -= begin_;
    begin_ = 0;
    const std::size_t size = buffer_.size();
    buffer_.resize(size + kPiece);
    const std::size_t count = ReadSome(buffer_.data() + size, kPiece);
    buffer_.resize(size + count);
    ended_ = count == 0;
    return !ended_;
}

bool LineReader::Bytes(std::uint8_t* buffer, std::size_t size) {
    const std::size_t at_hand = std::min(size, buffer_.size() - begin_);
    std::copy_n(buffer_.data() + begin_, at_hand, buffer);
    begin_ += at_hand;
    scanned_ = begin_;
    for (std::size_t done = at_hand; done < size;) {
        const std::size_t count = ReadSome(buffer + done, size - done);
        if (count == 0) return false;
        done += count;
    }
    return true;
}

} // namespace host
