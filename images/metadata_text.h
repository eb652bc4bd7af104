// The text in which metadata is reported: lines of limited length, up to a limited whole.
#pragma once

#include <string>
#include <string_view>

namespace corvane {

class MetadataText {
public:
    /// Adds a line of ISO-8859-1 text and its end. Line feeds within become carriage returns. A line of more
    /// than 199 characters, its end included, is cut; so is the text at 1,999.
    void AddLine(std::string_view line);

    [[nodiscard]] std::string Utf8() const;

private:
    std::string text_; ///< ISO-8859-1
};

} // namespace corvane
