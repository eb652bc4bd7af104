#include "platform/win32/file_handles.h"

#include "platform/win32/file_items.h"
#include "tests/support/drive_test.h"
#include "tests/support/files.h"
#include "tests/support/small_disk.h"
#include "tests/win32/error_of.h"

#include <array>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE;

struct FileHandles : corvane::test::DriveTest {
    ~FileHandles() override { CloseAll(); }
    void CloseAll() {
        for (const HANDLE handle : open_) CloseHandle(handle);
        open_.clear();
    }

    // 0, or the error of opening; an opened file stays open to the end of the test.
    DWORD Open(const char16_t* path, DWORD access, DWORD share = 0, DWORD disposition = OPEN_EXISTING) {
        const HANDLE handle = CreateFileW(path, access, share, disposition);
        if (handle == INVALID_HANDLE_VALUE) return GetLastError();
        open_.push_back(handle);
        return ERROR_SUCCESS;
    }
    HANDLE Last() { return open_.back(); }

private:
    std::vector<HANDLE> open_;
};

TEST_F(FileHandles, OpeningAndItsRefusals) {
    drives.MakeFile("c/file");
    drives.MakeFolder("c/folder");
    ASSERT_EQ(mkfifo((c + "/fifo").c_str(), 0600), 0);
    chmod(drives.MakeFile("c/read only").c_str(), 0444);
    EXPECT_EQ(Open(u"C:\\read only", GENERIC_READ), ERROR_SUCCESS);
    EXPECT_EQ(Open(u"C:\\new", GENERIC_WRITE, 0, CREATE_NEW), ERROR_SUCCESS);
    const auto descriptors = corvane::test::CountOpenDescriptors();
    EXPECT_EQ(Open(u"C:\\new", GENERIC_READ), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(Open(u"C:\\gone", GENERIC_READ), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Open(u"C:\\gone\\x", GENERIC_READ), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(Open(u"C:\\a|b", GENERIC_WRITE, 0, CREATE_NEW), ERROR_INVALID_NAME);
    EXPECT_EQ(Open(u"C:\\folder", GENERIC_READ), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Open(u"C:\\fifo", GENERIC_READ), ERROR_NOT_SUPPORTED);
    EXPECT_EQ(Open(u"C:\\fifo", GENERIC_WRITE), ERROR_NOT_SUPPORTED);
    EXPECT_EQ(Open(u"C:\\FILE", GENERIC_WRITE, 0, CREATE_NEW), ERROR_FILE_EXISTS);
    EXPECT_EQ(Open(u"C:\\read only", GENERIC_WRITE), ERROR_ACCESS_DENIED);
    EXPECT_EQ(corvane::test::CountOpenDescriptors(), descriptors);
    EXPECT_EQ(ErrorOf(DeleteFileW(u"C:\\read only")), ERROR_ACCESS_DENIED);
    EXPECT_EQ(ErrorOf(DeleteFileW(u"C:\\new")), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(DeleteFileW(u"C:\\fifo"), TRUE);
}

TEST_F(FileHandles, SharingIsCheckedBothWays) {
    const std::string file = drives.MakeFile("c/file");
    struct Case {
        DWORD first_access, first_share, second_access, second_share, error;
    };
    constexpr DWORD kBoth = GENERIC_READ | GENERIC_WRITE;
    const Case cases[] = {
        {GENERIC_READ, 0, GENERIC_READ, kShareAll, ERROR_SHARING_VIOLATION},
        {GENERIC_READ, FILE_SHARE_READ, GENERIC_READ, FILE_SHARE_READ, ERROR_SUCCESS},
        {GENERIC_READ, FILE_SHARE_READ, GENERIC_WRITE, kShareAll, ERROR_SHARING_VIOLATION},
        {GENERIC_WRITE, kShareAll, GENERIC_READ, FILE_SHARE_READ, ERROR_SHARING_VIOLATION},
        {kBoth, kShareAll, kBoth, kShareAll, ERROR_SUCCESS},
        {kBoth, kShareAll, GENERIC_READ, 0, ERROR_SHARING_VIOLATION},
    };
    std::filesystem::create_hard_link(file, c + "/other name");
    for (const Case& sharing : cases) {
        ASSERT_EQ(Open(u"C:\\file", sharing.first_access, sharing.first_share), ERROR_SUCCESS);
        EXPECT_EQ(Open(u"C:\\other name", sharing.second_access, sharing.second_share), sharing.error);
        CloseAll();
    }
}

TEST_F(FileHandles, OtherProgramsLocksCount) {
    const std::string file = drives.MakeFile("c/file");
    const int other = open(file.c_str(), O_RDONLY | O_CLOEXEC); // a description of its own, like a program's
    ASSERT_EQ(flock(other, LOCK_SH), 0);
    EXPECT_EQ(Open(u"C:\\file", GENERIC_WRITE), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(Open(u"C:\\file", GENERIC_READ, FILE_SHARE_READ), ERROR_SUCCESS);
    close(other);
}

TEST_F(FileHandles, ReadWriteSeek) {
    ASSERT_EQ(Open(u"C:\\file", GENERIC_READ | GENERIC_WRITE, 0, CREATE_NEW), ERROR_SUCCESS);
    DWORD count = 0;
    EXPECT_EQ(WriteFile(Last(), "0123456789", 10, &count), TRUE);
    EXPECT_EQ(count, 10U);
    constexpr std::int64_t kFar = 5'000'000'000;
    LARGE_INTEGER position{};
    EXPECT_EQ(SetFilePointerEx(Last(), {kFar - 10}, &position, FILE_CURRENT), TRUE);
    EXPECT_EQ(position.QuadPart, kFar);
    EXPECT_EQ(WriteFile(Last(), "end", 3, &count), TRUE);
    LARGE_INTEGER size{};
    EXPECT_EQ(GetFileSizeEx(Last(), &size), TRUE);
    EXPECT_EQ(size.QuadPart, kFar + 3);
    EXPECT_EQ(SetFilePointerEx(Last(), {-2}, nullptr, FILE_END), TRUE);
    std::array<char, 8> bytes{};
    EXPECT_EQ(ReadFile(Last(), bytes.data(), 8, &count), TRUE);
    EXPECT_EQ(std::string_view(bytes.data(), count), "nd");
    EXPECT_EQ(ErrorOf(SetFilePointerEx(Last(), {-1}, nullptr, FILE_BEGIN)), ERROR_INVALID_PARAMETER);
}

TEST_F(FileHandles, StaleHandlesAreRefused) {
    drives.MakeFile("c/file");
    const HANDLE handle = CreateFileW(u"C:\\file", GENERIC_READ, 0, OPEN_EXISTING);
    EXPECT_EQ(CloseHandle(handle), TRUE);
    DWORD count = 1;
    std::array<char, 1> byte{};
    LARGE_INTEGER size{};
    ASSERT_EQ(Open(u"C:\\file", GENERIC_READ), ERROR_SUCCESS);
    EXPECT_EQ(CloseHandle(handle), FALSE);
    EXPECT_EQ(ReadFile(handle, byte.data(), 1, &count), FALSE);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(ErrorOf(GetFileSizeEx(handle, &size)), ERROR_INVALID_HANDLE);
}

TEST_F(FileHandles, AFullDiskTellsWhatGotThere) {
    const corvane::test::SmallDisk disk(drives.MakeFolder("c/disk"), "64k");
    if (!disk.IsMounted()) GTEST_SKIP() << "mounting a file system is not permitted";
    ASSERT_EQ(Open(u"C:\\disk\\file", GENERIC_WRITE, 0, CREATE_NEW), ERROR_SUCCESS);
    const std::string bytes(100'000, 'x');
    DWORD count = 0;
    EXPECT_EQ(ErrorOf(WriteFile(Last(), bytes.data(), static_cast<DWORD>(bytes.size()), &count)),
              ERROR_DISK_FULL);
    EXPECT_EQ(count, 65'536U);
}

} // namespace
