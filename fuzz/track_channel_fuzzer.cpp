// Texts of a track and its channel.
#include "fuzz/fuzz_target.h"
#include "sounds/track_channel.h"

#include <string>

void Fuzz(std::string_view input) {
    const auto read = corvane::ParseTrackChannel(input);
    if (!read) return;
    std::string text = std::to_string(read->track);
    if (read->channel != corvane::kAllChannels) text += "/" + std::to_string(read->channel);
    Require(corvane::ParseTrackChannel(text) == read);
}
