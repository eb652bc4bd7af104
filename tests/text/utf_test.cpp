#include "platform/text/utf.h"

#include <gtest/gtest.h>

namespace {

// Runs of ASCII are converted in blocks: what is not ASCII may stand at any place of one.
TEST(Utf, ConvertsAnyCharacterAtAnyPlace) {
    struct Case {
        std::string utf8;
        std::u16string utf16;
    };
    const Case cases[] = {
        {"\xC3\xA9", u"é"}, {"\xC6\x92", u"ƒ"}, {"\xE2\x82\xAC", u"€"}, {"\xF0\x9D\x84\x9E", u"𝄞"}};
    for (const Case& one : cases) {
        for (std::size_t before = 0; before < 40; ++before) {
            for (const std::size_t after : {0U, 1U, 15U, 16U, 17U, 40U}) {
                const std::string utf8 = std::string(before, 'a') + one.utf8 + std::string(after, '~');
                const std::u16string utf16 =
                    std::u16string(before, u'a') + one.utf16 + std::u16string(after, u'~');
                ASSERT_EQ(utf::ToUtf16(utf8), utf16);
                ASSERT_EQ(utf::ToUtf8(utf16), utf8);
                ASSERT_FALSE(utf::IsAscii(utf8));
            }
        }
    }
    EXPECT_TRUE(utf::IsAscii(""));
    EXPECT_TRUE(utf::IsAscii(std::string(100, '\x7F')));
    EXPECT_EQ(utf::ToUtf16(std::string("\0x\0", 3)), std::u16string(u"\0x\0", 3));
}

TEST(Utf, ReplacesWhatIsMalformedAnywhere) {
    const std::string replacement = "\xEF\xBF\xBD";
    for (std::size_t before = 0; before < 40; ++before) {
        const std::string start(before, 'a');
        // A lone continuation, an overlong slash, a surrogate, a sequence that is cut by the end or by a
        // letter.
        for (const std::string bytes : {"\x80", "\xC0", "\xED\xA0\x80", "\xF5", "\xE2\x82"})
            ASSERT_EQ(utf::ToUtf8(utf::ToUtf16(start + bytes)).substr(before, 3), replacement);
        ASSERT_EQ(utf::ToUtf16(start + "\xE2\x82z"), std::u16string(before, u'a') + u"\uFFFDz");
        for (const char16_t half : {u'\xD834', u'\xDD1E'}) {
            std::u16string broken(before, u'a');
            broken += half;
            ASSERT_EQ(utf::ToUtf8(broken + u"z"), start + replacement + "z");
        }
    }
}

} // namespace
