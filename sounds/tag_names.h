// The names that tags are called by, the frames behind them, and the names of genres.
#pragma once

#include "sounds/tag_text.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

struct TagName {
    std::string_view name;
    std::string_view id;       ///< of the frame from version 2.3 on
    std::string_view short_id; ///< in version 2.2
    TagContent content = TagContent::kText;
};

/// The row of a name, in any case; null for a name that no tag has.
const TagName* FindTagName(std::string_view name);
/// The row of a frame; null for a frame that has no name here.
const TagName* NameOfFrame(std::string_view id);

/// Whether the frame is of that name. Version 2.4 has the year in a frame of its own, at the beginning of a
/// date.
bool IsFrameOf(const TagName& name, std::string_view id);
/// The frame to write for a name.
std::string_view FrameIdFor(const TagName& name, int version);

/// The value of a frame; nothing when it has none.
std::optional<std::string> TagValue(const Id3Tag& tag, const TagFrame& frame, const TagName& name);

/// The number of a genre as a text gives it: "17", "(17)", "(17)Rock" or a name of the list in any case.
std::optional<std::uint8_t> GenreNumber(std::string_view text);

} // namespace corvane
