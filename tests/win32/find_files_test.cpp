#include "platform/win32/find_files.h"

#include "platform/text/utf.h"
#include "platform/win32/attributes.h"
#include "platform/win32/errors.h"
#include "platform/win32/file_handles.h"
#include "tests/support/drive_test.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace {

struct FindFiles : corvane::test::DriveTest {
    static std::map<std::u16string, DWORD> All(const char16_t* pattern) {
        std::map<std::u16string, DWORD> entries;
        WIN32_FIND_DATAW data;
        const HANDLE search = FindFirstFileW(pattern, &data);
        if (search == INVALID_HANDLE_VALUE) return entries;
        do EXPECT_TRUE(entries.emplace(data.cFileName, data.dwFileAttributes).second);
        while (FindNextFileW(search, &data) != FALSE);
        EXPECT_EQ(GetLastError(), ERROR_NO_MORE_FILES);
        FindClose(search);
        return entries;
    }
};

TEST_F(FindFiles, NamesAndAttributes) {
    drives.MakeFile("c/Ünï😀");
    drives.MakeFile("c/.dot");
    drives.MakeFile("c/\xFF bytes");
    drives.MakeFolder("c/folder");
    std::filesystem::create_directory_symlink("folder", c + "/to folder");
    std::filesystem::create_symlink("gone", c + "/dangling");
    ASSERT_EQ(mkfifo((c + "/fifo").c_str(), 0600), 0);
    const std::string long_name(255, 'n');
    drives.MakeFile("c/" + long_name);
    const std::map<std::u16string, DWORD> expected = {
        {u"Ünï😀", 0},
        {u".dot", FILE_ATTRIBUTE_HIDDEN},
        {u"\uEFFF bytes", 0},
        {u"folder", FILE_ATTRIBUTE_DIRECTORY},
        {u"to folder", FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT},
        {u"dangling", FILE_ATTRIBUTE_REPARSE_POINT},
        {u"fifo", 0},
        {utf::ToUtf16(long_name), 0},
    };
    EXPECT_EQ(All(u"C:\\*.*"), expected);
}

TEST_F(FindFiles, NothingToFind) {
    drives.MakeFolder("c/empty");
    drives.MakeFile("c/file");
    const auto error_of = [](const char16_t* pattern) {
        WIN32_FIND_DATAW data;
        EXPECT_EQ(FindFirstFileW(pattern, &data), INVALID_HANDLE_VALUE);
        return GetLastError();
    };
    const auto descriptors = corvane::test::CountOpenDescriptors();
    EXPECT_EQ(error_of(u"C:\\empty\\*.*"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(error_of(u"C:\\gone\\*.*"), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(error_of(u"C:\\file\\*.*"), ERROR_DIRECTORY);
    EXPECT_EQ(corvane::test::CountOpenDescriptors(), descriptors);
}

TEST_F(FindFiles, FileServersNotesInSmallAndLargeFolders) {
    constexpr std::string_view kHidden = "0x22";
    const auto note = [&](const std::string& path) {
        return setxattr(path.c_str(), "user.DOSATTRIB", kHidden.data(), kHidden.size(), 0) == 0;
    };
    if (!note(drives.MakeFile("c/small/marked"))) GTEST_SKIP() << "no extended attributes here";
    EXPECT_EQ(All(u"C:\\small\\*.*").at(u"marked"), FILE_ATTRIBUTE_HIDDEN);
    drives.MakeFile("c/small/.named");
    fm::CurrentSession().hidden_marks = false;
    EXPECT_EQ(All(u"C:\\small\\*.*").at(u"marked"), 0U);
    EXPECT_EQ(All(u"C:\\small\\*.*").at(u".named"), FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(GetFileAttributesW(u"C:\\small\\marked"), FILE_ATTRIBUTE_ARCHIVE);
    fm::CurrentSession().hidden_marks = true;

    constexpr int kCount = 3'000; // several blocks of entries
    for (int i = 0; i < kCount; ++i) drives.MakeFile("c/large/" + std::to_string(i));
    ASSERT_TRUE(note(c + "/large"));
    for (int i = 0; i < kCount; i += 2) ASSERT_TRUE(note(c + "/large/" + std::to_string(i)));
    const auto entries = All(u"C:\\large\\*.*");
    EXPECT_EQ(entries.size(), kCount);
    for (const auto& [name, attributes] : entries)
        EXPECT_EQ(attributes, std::stoi(utf::ToUtf8(name)) % 2 == 0 ? FILE_ATTRIBUTE_HIDDEN : 0);
}

TEST_F(FindFiles, AFolderThatVanishesMeanwhile) {
    for (int i = 0; i < 10'000; ++i) drives.MakeFile("c/folder/" + std::to_string(i), "");
    WIN32_FIND_DATAW data;
    const HANDLE search = FindFirstFileW(u"C:\\folder\\*.*", &data);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    std::filesystem::remove_all(c + "/folder");
    int count = 1;
    while (FindNextFileW(search, &data) != FALSE) ++count;
    EXPECT_LT(count, 10'000);
    FindClose(search);
}

} // namespace
