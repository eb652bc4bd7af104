// Standard output, written in large pieces.
#pragma once

#include <string>
#include <string_view>

namespace host {

class Output {
public:
    /// On a terminal control characters are replaced, unless the bytes are to come out as they are.
    explicit Output(bool raw = false);
    ~Output() { Flush(); }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /// Text to add to; EndPiece follows.
    std::string& Buffer() { return buffer_; }
    /// Writes when enough has gathered; on a terminal at once.
    void EndPiece();
    /// Writes bytes that need not be copied first, if there are many.
    void Write(std::string_view bytes);
    void Flush();
    /// A text with its line ends on standard error. What was shown before stands before it where both go to
    /// one place.
    void Complain(const std::string& text);
    /// False once writing has failed; later text is dropped.
    [[nodiscard]] bool Good() const { return good_; }

private:
    void WriteOut(std::string_view bytes);
    void WriteAll(std::string_view bytes);

    std::string buffer_;
    bool terminal_;
    bool raw_;
    bool good_ = true;
};

} // namespace host
