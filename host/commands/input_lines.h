// Lines of standard input, read in large pieces.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class InputLines {
public:
    /// `before_reading` is called whenever more input has to be waited for.
    explicit InputLines(std::function<void()> before_reading);

    /// The next line without its line end, good until the next call; nullopt at the end of the input. A
    /// line longer than kMaxLine comes in parts.
    std::optional<std::string_view> Next();

    static constexpr std::size_t kMaxLine = std::size_t{64} << 20;

private:
    bool Fill();

    std::function<void()> before_reading_;
    std::string buffer_;
    std::size_t begin_ = 0;   ///< of the text that has not been handed out
    std::size_t scanned_ = 0; ///< up to here there is no line end
    bool ended_ = false;
};

} // namespace host
