#include "sounds/tag_text.h"

#include "sounds/tag_names.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

using namespace std::string_literals;

std::string Text(const std::string& data) {
    return DecodeTagText(data, TagContent::kText).value_or("-");
}

std::string Comment(const std::string& data) {
    return DecodeTagText(data, TagContent::kComment).value_or("-");
}

TEST(TagText, IsReadInEveryEncoding) {
    EXPECT_EQ(Text("\0Gr\xFC\xDF\x65"s), "Grüße");
    EXPECT_EQ(Text("\1\xFF\xFEG\0\xFC\0\x34\xD8\x1E\xDD"s), "Gü𝄞");
    EXPECT_EQ(Text("\1\xFE\xFF\0G\0\xFC\xD8\x34\xDD\x1E"s), "Gü𝄞");
    EXPECT_EQ(Text("\1\0G"s), "G") << "without a mark";
    EXPECT_EQ(Text("\2\0G\0\xFC"s), "Gü");
    EXPECT_EQ(Text("\3G\xC3\xBC"s), "Gü");
    EXPECT_EQ(Text("\0"s), "");
    EXPECT_EQ(Text("\1\xFF\xFEG"s), "") << "half a unit";
}

TEST(TagText, EndsAtItsTerminatorAndJoinsSeveral) {
    EXPECT_EQ(Text("\0one\0"s), "one");
    EXPECT_EQ(Text("\0one\0two\0\0"s), "one/two");
    EXPECT_EQ(Text("\1\xFF\xFEo\0\0\0\xFE\xFF\0t\0\0"s), "o/t");
    EXPECT_EQ(Text("\1\xFF\xFEo\0\0\0t\0"s), "o/t") << "the first mark counts for all";
    EXPECT_EQ(Text("\2\1\0\0\1\0\0"s), "Ā\x01") << "zeros at odd places end nothing";
    EXPECT_EQ(Comment("\0engabout\0text\0more"s), "text");
    EXPECT_EQ(Comment("\1eng\xFF\xFE\1\0\0\0\xFF\xFEt\0"s), "t");
    EXPECT_EQ(Comment("\0eng\0"s), "");
    EXPECT_EQ(Comment("\0engabout"s), "");
}

TEST(TagText, IsNoneInBrokenData) {
    for (const std::string& data :
         {""s, "\4x"s, "\xFFx"s, "\2\xD8\0"s, "\2\xDC\0\xD8\0"s, "\2\0x\0\0\xD8\0"s})
        EXPECT_EQ(Text(data), "-");
    for (const std::string& data : {""s, "\0en"s, "\1eng\xFE\xFF\xD8\0\0\0\0x"s})
        EXPECT_EQ(Comment(data), "-");
    EXPECT_FALSE(DecodeTagText("\0x"s, TagContent::kBinary));
}

TEST(TagText, IsWrittenInLatin1WhereThatIsEnough) {
    EXPECT_EQ(EncodeTagText("ÿ", TagContent::kComment), "\0XXX\0\xFF"s);
    EXPECT_EQ(EncodeTagText("aĀ", TagContent::kText), "\1\xFE\xFF\0a\1\0"s);
    EXPECT_EQ(EncodeTagText("Ā", TagContent::kComment), "\1XXX\xFE\xFF\0\0\xFE\xFF\1\0"s);
    std::string all;
    for (const std::string_view part : {"a", "ÿ", "Ā", "𝄞", "\r", "€"}) {
        all += part;
        EXPECT_EQ(Text(EncodeTagText(all, TagContent::kText)), all);
        EXPECT_EQ(Comment(EncodeTagText(all, TagContent::kComment)), all);
    }
}

TEST(TagText, OfAGenreIsANumberOrAName) {
    const std::pair<const char*, int> numbers[] = {
        {"17", 17},        {"(17)", 17}, {"(17)Rock", 17}, {"rock", 17},       {"0", 0},
        {"synthpop", 147}, {"147", 147}, {"148", -1},      {"(", -1},          {"()", -1},
        {"(RX)", -1},      {"", -1},     {"-1", -1},       {"9999999999", -1}, {"(17", 17}};
    for (const auto& [text, number] : numbers) {
        const auto found = GenreNumber(text);
        EXPECT_EQ(found ? *found : -1, number) << text;
    }
    const std::pair<std::string, std::string> values[] = {
        {"(0)", "Blues"},     {"(147)", "Synthpop"},        {"(148)", "-"}, {"(999)", "-"},
        {"(1000)", "(1000)"}, {"(141)", "Christian Rock "}, {"()", "()"},   {"(1x)", "(1x)"},
        {"17", "17"},         {"(17)Rock", "(17)Rock"}};
    for (const auto& [text, value] : values) {
        Id3Tag tag;
        tag.Append("TCON", EncodeTagText(text, TagContent::kText));
        EXPECT_EQ(TagValue(tag, tag.Frames()[0], *FindTagName("genre")).value_or("-"), value) << text;
    }
}

} // namespace
} // namespace corvane
