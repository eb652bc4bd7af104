#include "platform/win32/rewrite_file.h"

#include "tests/support/drive_test.h"
#include "tests/support/files.h"
#include "tests/support/small_disk.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace win32 {
namespace {

using corvane::test::CountEntries;
using corvane::test::CountOpenDescriptors;
using corvane::test::ReadBytes;
using corvane::test::StatusOf;

struct RewriteFileTest : corvane::test::DriveTest {
    static DWORD Rewrite(std::initializer_list<FilePart> parts) {
        return RewriteFile(u"C:\\file", std::span(parts.begin(), parts.size()));
    }
};

TEST_F(RewriteFileTest, WritesBytesAndRangesInOrder) {
    const std::string path = drives.MakeFile("c/file", "0123456789");
    EXPECT_EQ(Rewrite({{"new "}, {{}, 3, 4}, {" and "}, {{}, 0, 2}, {}}), 0U);
    EXPECT_EQ(ReadBytes(path), "new 3456 and 01");
    EXPECT_EQ(Rewrite({}), 0U);
    EXPECT_EQ(ReadBytes(path), "");
    const std::string large(3'000'000, 'x');
    EXPECT_EQ(Rewrite({{large}, {"y"}}), 0U);
    EXPECT_EQ(Rewrite({{"z"}, {{}, 1, 3'000'000}}), 0U);
    EXPECT_EQ(ReadBytes(path), "z" + large.substr(1) + "y");
    EXPECT_EQ(CountEntries(c), 1);
}

TEST_F(RewriteFileTest, KeepsWhatBelongsToTheFile) {
    const std::string path = drives.MakeFile("c/file", "old");
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    const bool is_root = geteuid() == 0;
    if (is_root) {
        ASSERT_EQ(chown(path.c_str(), 1234, 2345), 0);
    }
    const bool has_attributes = setxattr(path.c_str(), "user.note", "kept", 4, 0) == 0;
    const timespec times[] = {{1'000'000'000, 0}, {1'100'000'000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    const ino_t before = StatusOf(path).st_ino;
    const int reader = open(path.c_str(), O_RDONLY);

    ASSERT_EQ(Rewrite({{"new"}}), 0U);
    const struct stat status = StatusOf(path);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
    EXPECT_EQ(status.st_atim.tv_sec, 1'000'000'000);
    EXPECT_GT(status.st_mtim.tv_sec, 1'100'000'000) << "it has been changed now";
    EXPECT_NE(status.st_ino, before);
    if (is_root) {
        EXPECT_EQ(status.st_uid, 1234U);
        EXPECT_EQ(status.st_gid, 2345U);
    }
    char value[8] = {};
    if (has_attributes) {
        EXPECT_EQ(getxattr(path.c_str(), "user.note", value, sizeof value), 4);
    }
    char old[8] = {};
    EXPECT_EQ(read(reader, old, sizeof old), 3) << "who has it open keeps the old contents";
    EXPECT_STREQ(old, "old");
    close(reader);
}

TEST_F(RewriteFileTest, FollowsLinksAndRefusesWhatIsNoFile) {
    const std::string target = drives.MakeFile("elsewhere/target", "old");
    std::filesystem::create_symlink(target, c + "/file");
    EXPECT_EQ(Rewrite({{"new"}}), 0U);
    EXPECT_TRUE(std::filesystem::is_symlink(c + "/file"));
    EXPECT_EQ(ReadBytes(target), "new");
    std::filesystem::remove(c + "/file");
    EXPECT_EQ(Rewrite({{"new"}}), ERROR_FILE_NOT_FOUND);
    ASSERT_EQ(mkfifo((c + "/file").c_str(), 0600), 0);
    EXPECT_EQ(Rewrite({{"new"}}), ERROR_NOT_SUPPORTED);
    std::filesystem::remove(c + "/file");
    drives.MakeFolder("c/file");
    EXPECT_EQ(Rewrite({{"new"}}), ERROR_NOT_SUPPORTED);
    EXPECT_EQ(CountEntries(c), 1);
}

TEST_F(RewriteFileTest, LeavesTheFileAloneOnADiskThatIsFullOrReadOnly) {
    const corvane::test::SmallDisk disk(c, "64k");
    if (!disk.IsMounted()) GTEST_SKIP() << "mounting is not permitted";
    const std::string old(40'000, 'o');
    const std::string path = drives.MakeFile("c/file", old);
    const std::ptrdiff_t descriptors = CountOpenDescriptors();
    EXPECT_EQ(Rewrite({{"more"}, {{}, 0, 40'000}}), ERROR_DISK_FULL);
    EXPECT_EQ(Rewrite({{std::string(70'000, 'n')}}), ERROR_DISK_FULL);
    EXPECT_TRUE(disk.MakeReadOnly());
    EXPECT_EQ(Rewrite({{"new"}}), ERROR_WRITE_PROTECT);
    EXPECT_EQ(ReadBytes(path), old);
    EXPECT_EQ(CountEntries(c), 1);
    EXPECT_EQ(CountOpenDescriptors(), descriptors);
}

} // namespace
} // namespace win32
