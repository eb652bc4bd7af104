#include "platform/win32/attributes.h"

#include "tests/support/drive_test.h"

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <string_view>
#include <sys/xattr.h>

namespace {

struct Attributes : corvane::test::DriveTest {};

TEST_F(Attributes, OfFilesFoldersAndLinks) {
    drives.MakeFile("c/file");
    drives.MakeFile("c/.profile");
    drives.MakeFolder("c/.git");
    std::filesystem::permissions(drives.MakeFile("c/fixed"), std::filesystem::perms::owner_read);
    std::filesystem::create_symlink("c", drives.Path("c/self"));
    std::filesystem::create_symlink(".", drives.Path("c/folder link"));
    std::filesystem::create_symlink("file", drives.Path("c/file link"));
    std::filesystem::create_symlink("gone", drives.Path("c/dangling"));
    EXPECT_EQ(GetFileAttributesW(u"C:\\file"), FILE_ATTRIBUTE_ARCHIVE);
    EXPECT_EQ(GetFileAttributesW(u"C:\\"), FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(GetFileAttributesW(u"C:\\.profile"), FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(GetFileAttributesW(u"C:\\.git\\"), FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(GetFileAttributesW(u"C:\\fixed"), FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(GetFileAttributesW(u"C:\\folder link"),
              FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT);
    EXPECT_EQ(GetFileAttributesW(u"C:\\file link"), FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_REPARSE_POINT);
    EXPECT_EQ(GetFileAttributesW(u"C:\\dangling"), FILE_ATTRIBUTE_REPARSE_POINT);
}

TEST_F(Attributes, ReadTheFileServersHiddenBit) {
    using namespace std::string_view_literals;
    const std::string file = drives.MakeFile("c/file");
    const auto hidden_with = [&](std::string_view value) {
        if (setxattr(file.c_str(), "user.DOSATTRIB", value.data(), value.size(), 0) != 0) return -errno;
        return static_cast<int>(GetFileAttributesW(u"C:\\file") & FILE_ATTRIBUTE_HIDDEN);
    };
    if (hidden_with("0x22") == -ENOTSUP) GTEST_SKIP() << "no extended attributes in the temporary folder";
    EXPECT_EQ(hidden_with("0x22\0"sv), 2);
    EXPECT_EQ(hidden_with("0x20\0"sv), 0);
    EXPECT_EQ(hidden_with("\0\0\3\0\3\0\0\0\x11\0\0\0\x22\0\0\0"sv), 2);
    EXPECT_EQ(hidden_with("\0\0\5\0\5\0\0\0\x11\0\0\0\x20\0\0\0"sv), 0);
    EXPECT_EQ(hidden_with("\0\0\3\0\3\0\0\0\x10\0\0\0\x22\0\0\0"sv), 0) << "attributes not valid";
    EXPECT_EQ(hidden_with("\0\0\3\0\3\0\0\0\x11\0\0"sv), 0) << "cut short";
    EXPECT_EQ(hidden_with("0x"sv), 0);
    EXPECT_EQ(hidden_with(std::string(500, '2')), 0);
}

} // namespace
