#include "sounds/track_channel.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(TrackChannel, ReadsTrackAndChannel) {
    const std::pair<std::string, TrackChannel> cases[] = {
        {" \r+12 \r", {12, kAllChannels}},
        {"1/left", {1, 0}},
        {"1/RIGHT\r", {1, 1}},
        {"3/aLl", {3, kAllChannels}},
        {"2/+05  ", {2, 5}},
        {"4294967297/4294967296", {4294967295U, 2147483647}},
        {std::string(100000, '9'), {4294967295U, kAllChannels}}};
    for (const auto& [text, place] : cases) EXPECT_EQ(ParseTrackChannel(text), place) << text;
}

TEST(TrackChannel, RefusesOtherTexts) {
    for (const char* text : {"",     " ",    "+",       "++1",  "+ 1",     "-1",         "x",    "1x",
                             "1 2",  "1/",   "1/ left", "1/le", "1/leftx", "1/allright", "1/-1", "1/+left",
                             "1/0x", "1 /0", "1/0/0",   "\t1",  "1\n",     "/left"}) {
        EXPECT_EQ(ParseTrackChannel(text), std::nullopt) << text;
    }
}

} // namespace
} // namespace corvane
