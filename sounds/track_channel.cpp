#include "sounds/track_channel.h"

#include "plugin/parameters.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>

namespace corvane {

namespace {

constexpr std::string_view kBlanks = " \r";

struct ChannelWord {
    std::string_view word;
    std::int32_t channel;
};
constexpr std::array<ChannelWord, 3> kChannelWords = {{{"left", 0}, {"right", 1}, {"all", kAllChannels}}};

bool Skip(std::string_view& cursor, char character) {
    if (!cursor.starts_with(character)) return false;
    cursor.remove_prefix(1);
    return true;
}

/// One or more digits behind an optional "+".
std::optional<std::uint32_t> ReadNumber(std::string_view& cursor, std::uint32_t largest) {
    Skip(cursor, '+');
    const auto digits = cursor.substr(0, cursor.find_first_not_of("0123456789"));
    if (digits.empty()) return std::nullopt;
    std::uint64_t number = 0;
    for (const char digit : digits) {
        number = std::min<std::uint64_t>(number * 10 + static_cast<std::uint64_t>(digit - '0'), largest);
    }
    cursor.remove_prefix(digits.size());
    return static_cast<std::uint32_t>(number);
}

std::optional<std::int32_t> ReadChannel(std::string_view& cursor) {
    for (const auto& [word, channel] : kChannelWords) {
        if (ToLowerAscii(std::string(cursor.substr(0, word.size()))) == word) {
            cursor.remove_prefix(word.size());
            return channel;
        }
    }
    return ReadNumber(cursor, std::numeric_limits<std::int32_t>::max());
}

} // namespace

std::optional<TrackChannel> ParseTrackChannel(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    TrackChannel result;

    const auto track = ReadNumber(text, std::numeric_limits<std::uint32_t>::max());
    if (!track) return std::nullopt;
    result.track = *track;

    if (Skip(text, '/')) {
        const auto channel = ReadChannel(text);
        if (!channel) return std::nullopt;
        result.channel = *channel;
    }
    if (text.find_first_not_of(kBlanks) != std::string_view::npos) return std::nullopt;
    return result;
}

} // namespace corvane
