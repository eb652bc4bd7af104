#include "files/numbered_files.h"

#include "files/native_files.h"
#include "tests/support/drive_test.h"
#include "tests/support/files.h"

#include <string>
#include <string_view>

namespace {

using namespace corvane::native;
using corvane::test::ReadBytes;

std::span<const std::byte> Bytes(std::string_view text) {
    return std::as_bytes(std::span(text));
}

struct NumberedFiles : corvane::test::DriveTest {
    NumberedFiles() { ResetNumberedFiles(); }
    ~NumberedFiles() override { ResetNumberedFiles(); }
};

TEST_F(NumberedFiles, CreateTellsThePathOfAFileThatExists) {
    EXPECT_EQ(CreateFile(u"C:\\", u"日本.txt").code, 0);
    EXPECT_EQ(ReadBytes(c + "/日本.txt"), "");
    const CreatedFile again = CreateFile(u"C:\\", u"日本.txt");
    EXPECT_EQ(again.code, -48);
    EXPECT_EQ(again.path, u"C:\\日本.txt");
    EXPECT_EQ(CreateFile(u"C:\\gone\\", u"x").code, 3);
    EXPECT_EQ(CreateFile(u"C:\\", u"a<b").code, 123);
    EXPECT_EQ(CreateFile(u"C:\\", std::u16string(256, u'n')).code, 206);
}

TEST_F(NumberedFiles, NumbersCountUpAndAreNotUsedAgainSoon) {
    drives.MakeFile("c/a");
    drives.MakeFile("c/b");
    EXPECT_EQ(OpenFile(u"C:\\gone", Permission::kRead).code, 2);
    EXPECT_EQ(OpenFile(u"C:\\a", Permission::kRead).number, 100);
    EXPECT_EQ(OpenFile(u"C:\\b", Permission::kRead).number, 101);
    EXPECT_EQ(CloseFile(100), 0);
    EXPECT_EQ(CloseFile(100), -50);
    // Once around: 0, 65535 and the number that is in use are left out.
    for (int i = 102; i < 65'538; ++i) {
        const OpenedFile file = OpenFile(u"C:\\a", Permission::kRead);
        ASSERT_EQ(file.number, i < 65'535 ? i : i - 65'534);
        ASSERT_EQ(CloseFile(file.number), 0);
    }
}

TEST_F(NumberedFiles, PermissionsAndSharing) {
    drives.MakeFile("c/file");
    const auto writes = [](Permission permission) {
        const OpenedFile file = OpenFile(u"C:\\file", permission);
        const bool written = WriteFile(file.number, PositionMode::kAtPosition, 0, Bytes("y")).code == 0;
        CloseFile(file.number);
        return written;
    };
    for (const auto permission : {Permission::kRead, Permission(0)}) EXPECT_FALSE(writes(permission));
    for (const auto permission : {Permission::kWrite, Permission::kReadAndWrite,
                                  Permission::kReadAndWriteShared, Permission::kWriteToo})
        EXPECT_TRUE(writes(permission)) << static_cast<int>(permission);

    const OpenedFile exclusive = OpenFile(u"C:\\file", Permission::kRead);
    EXPECT_EQ(OpenFile(u"C:\\file", Permission::kRead).code, 32);
    EXPECT_EQ(corvane::native::DeleteFile(u"C:\\file"), 32);
    CloseFile(exclusive.number);
    EXPECT_EQ(OpenFile(u"C:\\file", Permission::kReadAndWriteShared).code, 0);
    EXPECT_EQ(OpenFile(u"C:\\file", Permission::kReadAndWriteShared).code, 0);
    ResetNumberedFiles();
    EXPECT_EQ(corvane::native::DeleteFile(u"C:\\file"), 0);
}

TEST_F(NumberedFiles, PositionModes) {
    drives.MakeFile("c/file", "0123456789");
    const FileNumber file = OpenFile(u"C:\\file", Permission::kWrite).number;
    const auto write = [&](int mode, std::int64_t offset, std::string_view text) {
        return WriteFile(file, static_cast<PositionMode>(mode), offset, Bytes(text));
    };
    EXPECT_EQ(write(0, 5, "ab").count, 2U);  // the offset does not count
    EXPECT_EQ(write(1, 8, "XYZ").count, 3U); // the position stays behind "ab"
    EXPECT_EQ(write(7, 0, "c").count, 1U);   // 3, in its low bits
    EXPECT_EQ(write(2, 0, "n").code, -50);
    EXPECT_EQ(write(1, -1, "n").code, 87);
    EXPECT_EQ(write(4, 0, "d").count, 1U);
    EXPECT_EQ(WriteFile(7, PositionMode::kAtPosition, 0, Bytes("n")).code, -50);
    CloseFile(file);
    EXPECT_EQ(ReadBytes(c + "/file"), "abcd4567XYZ");
}

} // namespace
