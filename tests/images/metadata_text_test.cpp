#include "images/exif_dump.h"
#include "tests/support/made_images.h"

#include <gtest/gtest.h>

namespace {

using namespace corvane;
using namespace std::string_literals;

TEST(MetadataText, KeepsToItsLimits) {
    MetadataText text;
    text.AddLine("a\nb\xE9");
    text.AddLine(std::string(300, 'x'));
    EXPECT_EQ(text.Utf8(), "a\rb\xC3\xA9\r" + std::string(198, 'x') + "\r");
    for (int i = 0; i < 20; ++i) text.AddLine(std::string(198, 'y'));
    EXPECT_EQ(text.Utf8().size(), 1999U + 1) << "one character has two bytes";
}

std::string DumpOf(const std::string& jpeg) {
    MetadataText text;
    AddExifDump(std::as_bytes(std::span(jpeg)), text);
    return text.Utf8();
}

std::string Section(char marker, const std::string& content) {
    const std::size_t size = content.size() + 2;
    return "\xFF"s + marker + static_cast<char>(size >> 8) + static_cast<char>(size & 0xFF) + content;
}

/// A directory of two entries, and a second with a thumbnail of 4 bytes. The maker has 4 bytes.
std::string ExifBlock(const std::string& maker = "Ann\0"s) {
    const std::string entries = "\2\0"s // how many
                                "\x0F\1\2\0\4\0\0\0"s +
                                maker +                        // text
                                "\x12\1\3\0\1\0\0\0\6\0\0\0"s; // orientation, number
    const std::string thumbnail = "\2\0"s
                                  "\1\2\4\0\1\0\0\0\x44\0\0\0"s
                                  "\2\2\4\0\1\0\0\0\4\0\0\0"s
                                  "\0\0\0\0"s;
    return "Exif\0\0II*\0\x08\0\0\0"s + entries + "\x26\0\0\0"s + thumbnail + "\xFF\xD8\xFF\xD9"s;
}

TEST(ExifDump, ListsDirectoriesAndTheThumbnail) {
    const std::string dump = DumpOf("\xFF\xD8"s + Section('\xE1', ExifBlock()) + "\xFF\xD9");
    EXPECT_TRUE(dump.starts_with("IFD 0\r  ")) << dump;
    EXPECT_NE(dump.find("\r  Make: Ann\r"), std::string::npos) << dump;
    EXPECT_NE(dump.find("\r  Orientation: Right-top\r"), std::string::npos) << dump;
    EXPECT_TRUE(dump.ends_with("\rThumbnail (bytes): 4\r")) << dump;
}

TEST(ExifDump, TextsAreUtf8OrElseLatin1) {
    const auto has_maker = [](const std::string& stored, const std::string& shown) {
        const std::string dump = DumpOf("\xFF\xD8"s + Section('\xE1', ExifBlock(stored)));
        return dump.find("\r  Make: " + shown + "\r") != std::string::npos;
    };
    EXPECT_TRUE(has_maker("J\xC3\xBC\0"s, "J\xC3\xBC"));
    EXPECT_TRUE(has_maker("J\xFCr\0"s, "J\xC3\xBCr"));
    EXPECT_TRUE(has_maker("\xE2\x82\xAC\0"s, "?")) << "no euro sign in ISO-8859-1";
}

TEST(ExifDump, LooksAtTheSecondSectionOnly) {
    const std::string exif = Section('\xE1', ExifBlock());
    EXPECT_EQ(DumpOf("\xFF\xD8"s + Section('\xE0', "JFIF\0\1\1\0\0\1\0\1\0\0"s) + exif),
              "  Size: 14\r  Unknown content.\r");
    EXPECT_EQ(DumpOf("\xFF\xD8\xFF\xD9"s + exif), "");
    EXPECT_EQ(DumpOf("\xFF\xD8\xFF\xD8"s + exif), "");
    EXPECT_EQ(DumpOf("\xFF\xD8"s + Section('\xE1', "http://ns.adobe.com/xap/1.0/\0<x/>"s)), "");
    EXPECT_EQ(DumpOf("\xFF\xD8"s + Section('\xFE', "a comment"s)), "  Size: 9\r  Unknown content.\r");
}

TEST(ExifDump, SurvivesDamage) {
    const std::string whole = "\xFF\xD8"s + Section('\xE1', ExifBlock());
    for (std::size_t size = 0; size <= whole.size(); ++size) DumpOf(whole.substr(0, size));
    for (std::size_t i = 2; i < whole.size(); ++i) {
        for (int bit = 0; bit < 8; ++bit) {
            std::string flipped = whole;
            flipped[i] = static_cast<char>(flipped[i] ^ 1 << bit);
            EXPECT_LE(DumpOf(flipped).size(), 2U * 1999);
        }
    }
}

} // namespace
