#include "platform/win32/file_items.h"

#include "tests/support/drive_test.h"
#include "tests/support/environment_variable.h"
#include "tests/support/files.h"
#include "tests/win32/error_of.h"

#include <array>
#include <cstdint>
#include <ctime>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct FileItems : corvane::test::DriveTest {};

TEST_F(FileItems, CreateOneFolder) {
    const auto create = [](const std::u16string& path) { return ErrorOf(CreateDirectoryW(path.c_str())); };
    drives.MakeFile("c/file");
    EXPECT_EQ(create(u"C:\\Größe 📁"), ERROR_SUCCESS);
    EXPECT_TRUE(std::filesystem::is_directory(c + "/Größe 📁"));
    EXPECT_EQ(create(u"C:\\GRÖSSE 📁"), ERROR_SUCCESS); // no other case of it, but another name
    EXPECT_EQ(create(u"C:\\größe 📁"), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(create(u"C:\\File"), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(create(u"C:\\file\\b"), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(create(u"C:\\" + std::u16string(255, u'n')), ERROR_SUCCESS);
}

TEST_F(FileItems, AttributesTimesAndSize) {
    const corvane::test::EnvironmentVariable zone("TZ", "Asia/Kolkata"); // half an hour off, never changes
    tzset();
    const std::string file = drives.MakeFile("c/file", "");
    ASSERT_EQ(truncate(file.c_str(), (std::int64_t{5} << 32) + 7), 0);
    const timespec times[2] = {{0, 0}, {1'141'740'309, 120'000'000}}; // 2006-03-07 14:05:09 UTC
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    WIN32_FILE_ATTRIBUTE_DATA data{};
    ASSERT_EQ(GetFileAttributesExW(u"C:\\FILE", GetFileExInfoStandard, &data), TRUE);
    EXPECT_EQ(data.nFileSizeHigh, 5U);
    EXPECT_EQ(data.nFileSizeLow, 7U);
    EXPECT_EQ(data.dwFileAttributes, FILE_ATTRIBUTE_ARCHIVE);
    EXPECT_EQ(std::uint64_t{data.ftLastAccessTime.dwHighDateTime} << 32 | data.ftLastAccessTime.dwLowDateTime,
              116'444'736'000'000'000U); // the start of 1970
    const SYSTEMTIME t = win32::ToLocalTime(data.ftLastWriteTime);
    const std::array<int, 8> fields = {t.wYear, t.wMonth,  t.wDay,    t.wDayOfWeek,
                                       t.wHour, t.wMinute, t.wSecond, t.wMilliseconds};
    EXPECT_EQ(fields, (std::array{2006, 3, 7, 2, 19, 35, 9, 120}));
    EXPECT_EQ(ErrorOf(GetFileAttributesExW(u"C:\\gone", GetFileExInfoStandard, &data)), ERROR_FILE_NOT_FOUND);
}

TEST_F(FileItems, TimesOutOfRangeAreHeldAtItsEnds) {
    const FILETIME early = win32::ToFileTime({INT64_MIN, 0});
    EXPECT_EQ(early.dwHighDateTime, 0U);
    EXPECT_EQ(early.dwLowDateTime, 0U);
    EXPECT_GT(win32::ToLocalTime(win32::ToFileTime({INT64_MAX, 0})).wYear, 30'000);
}

} // namespace
