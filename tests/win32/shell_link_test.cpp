#include "platform/win32/shell_link.h"

#include "platform/text/utf.h"
#include "tests/support/drive_test.h"
#include "tests/support/files.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

namespace {

using win32::DecodeShellLink;
using win32::EncodeShellLink;

struct ShellLinks : corvane::test::DriveTest {
    ShellLinks() { drives.Map(R"(\\srv\share)", "s"); }
};

TEST_F(ShellLinks, WhatIsWrittenIsRead) {
    for (const char16_t* target : {u"C:\\", u"C:\\a.txt", u"C:\\日本\\Ünï😀.txt", u"\\\\srv\\share\\a\\b.txt",
                                   u"\\\\srv\\Größe", u"\\\\срв\\доля\\x"}) {
        for (const char16_t* description : {u"", u"A note – 注"}) {
            const auto link = DecodeShellLink(EncodeShellLink({target, description}));
            ASSERT_TRUE(link.has_value()) << utf::ToUtf8(target);
            EXPECT_EQ(link->target, target);
            EXPECT_EQ(link->description, description);
        }
    }
    EXPECT_EQ(DecodeShellLink(EncodeShellLink({u"C:\\folder\\", u""}))->target, u"C:\\folder");
}

// As other programs write it: an item list in front, and 8-bit texts alone.
TEST_F(ShellLinks, LinksOfOtherPrograms) {
    using namespace std::string_literals;
    std::string link = EncodeShellLink({u"C:\\x", u""}).substr(0, 0x4C);
    link[20] = 1 | 2 | 4; // item list, link info, name; no Unicode
    link += "\x06\0"s + "\x04\0ab"s + "\0\0"s;
    const std::string volume = "\x11\0\0\0\x03\0\0\0\0\0\0\0\x10\0\0\0\0"s;
    const std::string texts = "D:\\Caf\xE9\0"s + "men\xFC.txt\0"s;
    const auto number = [](std::size_t value) {
        return std::string(1, static_cast<char>(value)) + "\0\0\0"s;
    };
    const std::size_t base = 0x1C + volume.size();
    link += number(base + texts.size()) + number(0x1C) + number(1) + number(0x1C) + number(base) + number(0) +
            number(base + 8) + volume + texts;
    link += "\x04\0note"s + "\0\0\0\0"s;
    const auto read = DecodeShellLink(link);
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(read->target, u"D:\\Cafémenü.txt");
    EXPECT_EQ(read->description, u"note");
}

TEST_F(ShellLinks, DamagedBytesGiveNothingOrSomethingButNoHarm) {
    const std::string whole = EncodeShellLink({u"\\\\srv\\share\\a", u"note"});
    for (std::size_t size = 0; size < 0x4C; ++size)
        EXPECT_FALSE(DecodeShellLink(std::string_view(whole).substr(0, size)).has_value());
    for (std::size_t size = 0x4C; size < whole.size(); ++size)
        DecodeShellLink(std::string(whole, 0, size)); // an exact copy: reading behind it shows
    for (std::size_t i = 0; i < whole.size(); ++i) {
        std::string damaged = whole;
        damaged[i] = '\xFF';
        const auto link = DecodeShellLink(damaged);
        EXPECT_LE(link.value_or(win32::ShellLink()).target.size(), whole.size());
    }
    EXPECT_FALSE(DecodeShellLink(std::string(1000, '\0')).has_value());
}

TEST_F(ShellLinks, SavingReplacesFilesOnly) {
    drives.MakeFile("c/old.lnk", std::string(5'000, 'x'));
    drives.MakeFolder("c/folder.lnk");
    EXPECT_EQ(win32::SaveShellLink({u"C:\\a", u""}, u"C:\\OLD.LNK"), 0);
    EXPECT_EQ(DecodeShellLink(corvane::test::ReadBytes(c + "/old.lnk"))->target, u"C:\\a");
    constexpr std::uint32_t kFailure = 0x80070000;
    const auto save = [](const char16_t* path) {
        return static_cast<std::uint32_t>(win32::SaveShellLink({u"C:\\a", u""}, path));
    };
    EXPECT_EQ(save(u"C:\\folder.lnk"), kFailure | ERROR_ACCESS_DENIED);
    std::filesystem::permissions(c + "/old.lnk", std::filesystem::perms::owner_read);
    EXPECT_EQ(save(u"C:\\old.lnk"), kFailure | ERROR_ACCESS_DENIED);
    EXPECT_EQ(save(u"C:\\gone\\a.lnk"), kFailure | ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(save(u"C:\\a?.lnk"), kFailure | ERROR_INVALID_NAME);
}

// An independent reader, where there is one.
TEST_F(ShellLinks, OtherToolsReadThem) {
    if (std::system("command -v lnkinfo >/dev/null") != 0) GTEST_SKIP() << "lnkinfo is not installed";
    const auto read = [&](const char16_t* target) {
        EXPECT_EQ(win32::SaveShellLink({target, u"A note"}, u"C:\\a.lnk"), 0);
        const std::string command = "LC_ALL=C.UTF-8 lnkinfo '" + c + "/a.lnk' > '" + c + "/out' 2>&1";
        EXPECT_EQ(std::system(command.c_str()), 0);
        return corvane::test::ReadBytes(c + "/out");
    };
    drives.MakeFile("c/Ünï.txt", "12345");
    const std::string local = read(u"C:\\Ünï.txt");
    for (const char* part : {"C:\\Ünï.txt", ": A note", "Fixed (3)", "5 bytes"})
        EXPECT_NE(local.find(part), std::string::npos) << part << " in " << local;
    const std::string network = read(u"\\\\srv\\share\\a.txt");
    for (const char* part : {R"(\\srv\share)", "a.txt"})
        EXPECT_NE(network.find(part), std::string::npos) << part << " in " << network;
}

} // namespace
