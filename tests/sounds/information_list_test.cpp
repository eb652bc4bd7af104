#include "sounds/information_list.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvane {
namespace {

std::vector<std::string_view> Lines(std::string_view list) {
    std::vector<std::string_view> lines;
    InformationLines reader(list);
    for (std::string_view line; reader.Next(line);) lines.push_back(line);
    return lines;
}

using Strings = std::vector<std::string_view>;

TEST(InformationLines, EndAtReturnsAndLineFeeds) {
    EXPECT_EQ(Lines(""), Strings());
    EXPECT_EQ(Lines("a\rb\nc\r\nd"), (Strings{"a", "b", "c", "d"}));
    EXPECT_EQ(Lines("a\r\rb\n\r"), (Strings{"a", "", "b", ""}));
    EXPECT_EQ(Lines("a\r"), (Strings{"a"}));
}

TEST(InformationLines, LongOnesAreSeveral) {
    const std::string full(1023, 'x');
    EXPECT_EQ(Lines(full + "\ry"), (Strings{full, "y"}));
    EXPECT_EQ(Lines(full + "y\rz"), (Strings{full, "y", "z"}));
    EXPECT_EQ(Lines(full + full), (Strings{full, full}));
    std::string wide;
    for (int i = 0; i < 1023; ++i) wide += "\xC3\xA4";
    EXPECT_EQ(Lines(wide + "\r\n" + wide + "y"), (Strings{wide, wide, "y"})) << "characters count, not bytes";
    EXPECT_EQ(Lines(std::string(1024, '\xC3') + "\r").size(), 2U);
    EXPECT_EQ(Lines(std::string(5000, '\x80')).size(), 5U) << "bytes that are no text";
}

TEST(InformationLevel, IsTwoSpacesEach) {
    const std::vector<std::size_t> levels = {1, 1, 2, 2, 3, 3, 4, 4};
    for (std::size_t spaces = 0; spaces < levels.size(); ++spaces)
        EXPECT_EQ(InformationLevel(std::string(spaces, ' ') + "Key: v"), levels[spaces]) << spaces;
    EXPECT_EQ(InformationLevel("\tKey"), 1U) << "tabs do not indent";
}

TEST(InformationLine, HasAKeyAndAValue) {
    EXPECT_EQ(InformationKey("    Creation Date (ts): 05-03-2007 14:02:09"), "Creation Date");
    EXPECT_EQ(InformationValue("    Creation Date (ts):   05-03-2007 14:02:09"), "05-03-2007 14:02:09");
    EXPECT_EQ(InformationKey("  Media"), "Media");
    EXPECT_EQ(InformationValue("  Media"), "  Media");
    EXPECT_EQ(InformationValue("Key:"), "");
    EXPECT_EQ(InformationKey("a (b) c: d"), "a (b) c");
    EXPECT_EQ(WithoutNote("(s)"), "");
    EXPECT_EQ(WithoutNote("a)"), "a)");
    EXPECT_EQ(WithoutNote("a (x) (y)"), "a (x)");
}

TEST(InformationKeyPath, FindsLinesByTheirLevels) {
    const std::string list = "Track 1\r  Volume (x): 1\r  Media\rTrack 2\r  Volume: 2\r  Balance: 7\r";
    const std::pair<const char*, const char*> found[] = {{"Track 1/Volume", "1"},
                                                         {"Track 1/Volume (x)", "1"},
                                                         {"Track 2/Volume", "2"},
                                                         {"Track 1/Media", "Media"},
                                                         {"Track 1/Balance", "7"}}; // of a later section
    for (const auto& [path, value] : found) EXPECT_EQ(FindInformationKey(list, path).value, value) << path;
    using enum InformationSearch;
    for (const char* path : {"Track 2/Track 1", "Volume", "track 1", "Track 1 (x)/Media", "Track 1/",
                             "/Track 1", "Track 1//Volume", "Track 1/Volume/", "Track 1/(s)", "X/Volume"})
        EXPECT_EQ(FindInformationKey(list, path).outcome, kMissing) << path;
    for (const char* path : {"", "/", "///"})
        EXPECT_EQ(FindInformationKey(list, path).outcome, kNoKey) << path;
    EXPECT_EQ(FindInformationKey(list, "(s)").outcome, kEmptyKey);
}

TEST(InformationKeyPath, DepthCostsNoStack) {
    std::string list;
    std::string path;
    for (std::size_t level = 0; level < 500; ++level) {
        list += std::string(level * 2, ' ') + "k" + (level == 499 ? ": deep\r" : "\r");
        path += level == 0 ? "k" : "/k";
    }
    EXPECT_EQ(FindInformationKey(list, path).value, "deep");
    std::string slashes;
    for (int i = 0; i < 1'000'000; ++i) slashes += "k/";
    EXPECT_EQ(FindInformationKey(list, slashes).outcome, InformationSearch::kMissing);
}

} // namespace
} // namespace corvane
