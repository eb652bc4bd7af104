// Lines, and bytes between them, from a descriptor that is read in large pieces.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace host {

class LineReader {
public:
    /// The descriptor stays the caller's. `before_reading`, if any, is called whenever more input has to be
    /// waited for.
    explicit LineReader(int descriptor, std::size_t longest = kMaxLine,
                        std::function<void()> before_reading = {});

    /// The next line without its line end (also that of DOS), good until the next call; nullopt at the end of
    /// the input, and from a line of more than `longest` bytes on.
    std::optional<std::string_view> Line();
    /// Why the lines ended before the input did, with the number of the line at fault; empty when they
    /// didn't.
    [[nodiscard]] std::string Problem(std::size_t number) const;
    /// The bytes that come next; false when the input ends before.
    [[nodiscard]] bool Bytes(std::uint8_t* buffer, std::size_t size);
    /// True when a whole line is at hand that needs no waiting.
    [[nodiscard]] bool HasLine() const { return buffer_.find('\n', begin_) != std::string::npos; }

    static constexpr std::size_t kMaxLine = std::size_t{64} << 20;
    static constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

private:
    [[nodiscard]] bool IsTooLong() const { return scanned_ - begin_ >= longest_; }
    [[nodiscard]] std::size_t ReadSome(void* buffer, std::size_t size);
    [[nodiscard]] bool Fill();

    int descriptor_;
    std::size_t longest_;
    std::function<void()> before_reading_;
    std::string buffer_;
    std::size_t begin_ = 0;   ///< of what has not been handed out
    std::size_t scanned_ = 0; ///< up to here there is no line end
    bool ended_ = false;
    int error_ = 0; ///< of the system, which ended the input
};

} // namespace host
