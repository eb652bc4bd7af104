#include "images/metadata_text.h"

#include "platform/text/utf.h"

#include <algorithm>

namespace corvane {

void MetadataText::AddLine(std::string_view line) {
    constexpr std::size_t kLongestLine = 199;
    constexpr std::size_t kLongestText = 1999;
    std::string ended(line.substr(0, kLongestLine - 1));
    ended += '\r';
    std::ranges::replace(ended, '\n', '\r');
    text_.append(ended, 0, kLongestText - text_.size());
}

std::string MetadataText::Utf8() const {
    return utf::FromLatin1(text_);
}

} // namespace corvane
