#include "platform/win32/unix_names.h"

#include "platform/text/utf.h"

#include <gtest/gtest.h>
#include <random>

namespace win32 {
namespace {

TEST(UnixNames, KeepUnicodeAsItIs) {
    EXPECT_EQ(FromUnixName("Ærø 日本 𝄞.wav"), u"Ærø 日本 𝄞.wav");
    EXPECT_EQ(FromUnixName("\xEF\xBF\xBD"), u"\uFFFD") << "a replacement character in the name itself";
    EXPECT_EQ(ToUnixName(u"Ærø 日本 𝄞.wav"), "Ærø 日本 𝄞.wav");
}

TEST(UnixNames, CarryMalformedBytesThroughAnyUnicodeText) {
    EXPECT_EQ(FromUnixName("caf\xE9.jpg"), u"caf\uEFE9.jpg");
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        std::string name;
        for (int i = 0; i < 12; ++i) name.push_back(static_cast<char>(random() % 255 + 1));
        if (round % 3 == 0)
            name += "\xEE\xBE\x80\xEE\xBF"; // the private character for byte 0x80, then half of one
        const std::u16string text = FromUnixName(name);
        EXPECT_EQ(ToUnixName(utf::ToUtf16(utf::ToUtf8(text))), name);
    }
}

} // namespace
} // namespace win32
