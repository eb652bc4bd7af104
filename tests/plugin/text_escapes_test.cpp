#include "plugin/text_escapes.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(TextEscapes, ComeBackAsTheyWere) {
    EXPECT_EQ(EscapeLineBreaks("a&b#c\r\n"), "a&#38;b&#35;c&#13;&#10;");
    std::string every_byte;
    for (int byte = 0; byte < 256; ++byte) every_byte += static_cast<char>(byte);
    EXPECT_EQ(UnescapeCharacterReferences(EscapeLineBreaks(every_byte)), every_byte);
    EXPECT_EQ(EscapeLineBreaks(""), "");
}

TEST(TextEscapes, ReferencesMayLackTheirEnd) {
    EXPECT_EQ(UnescapeCharacterReferences("&#65;&#66&#67x"), "ABCx");
    EXPECT_EQ(UnescapeCharacterReferences("&#13"), "\r");
    EXPECT_EQ(UnescapeCharacterReferences("&#65;;"), "A;");
}

TEST(TextEscapes, OtherTextIsCopied) {
    for (const char* text : {"&", "&#", "&#x41;", "&amp;", "#65;", "a&#;b", "&&#"})
        EXPECT_EQ(UnescapeCharacterReferences(text), text);
    EXPECT_EQ(UnescapeCharacterReferences("&&#65;"), "&A");
}

TEST(TextEscapes, NumbersBeyondAByteGiveAQuestionMark) {
    EXPECT_EQ(UnescapeCharacterReferences("&#255;&#256;&#300;"), "\xFF??");
    EXPECT_EQ(UnescapeCharacterReferences("&#4294967361;"), "?") << "65 in 32 bits";
    EXPECT_EQ(UnescapeCharacterReferences("&#00065;"), "A");
}

} // namespace
} // namespace corvane
