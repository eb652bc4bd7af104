// Texts that name a track and one of its channels: "1", "+2", "1/left", "2/0", "1/ALL".
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace corvane {

inline constexpr std::int32_t kAllChannels = -1;

struct TrackChannel {
    std::uint32_t track = 0;             ///< from 1; 0 can be written but names no track
    std::int32_t channel = kAllChannels; ///< from 0

    bool operator==(const TrackChannel&) const = default;
};

/// Spaces and carriage returns may stand around the text, not inside it. Numbers beyond their type's range
/// stay at its end. Nothing for a text of another form.
std::optional<TrackChannel> ParseTrackChannel(std::string_view text);

} // namespace corvane
