#include "sounds/set_tags.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

// What a list makes of a file without tags: "code|Name=value|…".
std::string Tags(std::string_view list) {
    TagFile file;
    std::string all = std::to_string(SetTags(file, list));
    for (const TagFrame& frame : file.Tag().Frames()) {
        const TagName& name = *NameOfFrame(frame.id);
        all.append("|").append(name.name).append("=").append(*TagValue(file.Tag(), frame, name));
    }
    return all;
}

TEST(SetTags, TakesLinesWithAnyLineEnd) {
    EXPECT_EQ(Tags("Name: a\rartist:b\nALBUM :c"), "-5240|Name=a|Artist=b") << "a blank belongs to the name";
    EXPECT_EQ(Tags("\r\n \t\n  Name:\t a b \r\n\r\rArtist: c:d"), "0|Name=a b |Artist=c:d");
    EXPECT_EQ(Tags(""), "0");
    EXPECT_EQ(Tags("Name: a\rName:  \t\r"), "0");
    EXPECT_EQ(Tags("Name: a\r:gone\rArtist: b"), "0|Artist=b") << "no name: all tags";
}

TEST(SetTags, StopsAtTheFirstLineThatIsNone) {
    for (const std::string_view list : {"Year", "N\tame: x", "N\xC3\xA4me: x", "\x1f: x"})
        EXPECT_TRUE(Tags(list).starts_with("-2740")) << list;
    EXPECT_EQ(Tags("Name: a\rMood: b\rArtist: c"), "-5240|Name=a");
    EXPECT_EQ(Tags("Name: \xC3"), "-108") << "no UTF-8";
}

TEST(SetTags, UnescapesCommentsAlone) {
    EXPECT_EQ(Tags("Comment: a&#13;b&#10c"), "0|Comment=a\rb\nc");
    EXPECT_EQ(Tags("Name: a&#13;b"), "0|Name=a&#13;b");
    EXPECT_EQ(Tags("Comment: &#300;"), "0|Comment=?");
    EXPECT_EQ(Tags("Comment: a&#0;b"), "0|Comment=a") << "a zero ends a text";
    EXPECT_EQ(Tags("Comment: &#195;&#164;"), "0|Comment=ä");
}

} // namespace
} // namespace corvane
