#include "sounds/track_channel.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(TrackChannel, ReadsTrackAndChannel) {
    EXPECT_EQ(ParseTrackChannel("1"), (TrackChannel{1, kAllChannels}));
    EXPECT_EQ(ParseTrackChannel(" \r+12 \r"), (TrackChannel{12, kAllChannels}));
    EXPECT_EQ(ParseTrackChannel("1/left"), (TrackChannel{1, 0}));
    EXPECT_EQ(ParseTrackChannel("1/RIGHT\r"), (TrackChannel{1, 1}));
    EXPECT_EQ(ParseTrackChannel("3/aLl"), (TrackChannel{3, kAllChannels}));
    EXPECT_EQ(ParseTrackChannel("2/0"), (TrackChannel{2, 0}));
    EXPECT_EQ(ParseTrackChannel("2/+05  "), (TrackChannel{2, 5}));
}

TEST(TrackChannel, KeepsHugeNumbersInRange) {
    EXPECT_EQ(ParseTrackChannel("4294967297/4294967296"), (TrackChannel{4294967295U, 2147483647}));
    EXPECT_EQ(ParseTrackChannel(std::string(100000, '9')), (TrackChannel{4294967295U, kAllChannels}));
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
