// Texts of a track and its channel.
#include "sounds/track_channel.h"

#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const auto read = corvane::ParseTrackChannel({reinterpret_cast<const char*>(data), size});
    if (!read) return 0;
    std::string text = std::to_string(read->track);
    if (read->channel != corvane::kAllChannels) text += "/" + std::to_string(read->channel);
    if (corvane::ParseTrackChannel(text) != read) std::abort();
    return 0;
}
