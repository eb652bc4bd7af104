#include "platform/win32/paths.h"

#include "tests/support/drive_test.h"

#include <filesystem>

namespace win32 {
namespace {

struct Paths : corvane::test::DriveTest {
    std::string share = drives.Map(R"(\\srv\share)", "s");
};

TEST_F(Paths, ReachEntriesExactlyOrElseInAnotherCase) {
    drives.MakeFile("c/Data/Ärger.WAV");
    drives.MakeFile("c/Data/both");
    drives.MakeFile("c/Data/BOTH");
    EXPECT_EQ(ToUnixPath(u"C:\\Data\\Ärger.WAV").path, c + "/Data/Ärger.WAV");
    EXPECT_EQ(ToUnixPath(u"c:/dATA\\ÄRGER.wav").path, c + "/Data/Ärger.WAV");
    EXPECT_EQ(ToUnixPath(u"C:\\data\\BOTH").path, c + "/Data/BOTH") << "the exact name wins";
    EXPECT_EQ(ToUnixPath(u"C:\\DATA\\both").path, c + "/Data/both")
        << "the exact name wins in another folder's case";
    EXPECT_TRUE(ToUnixPath(u"C:\\data\\").exists);
}

TEST_F(Paths, TellWhatIsMissing) {
    drives.MakeFile("c/Data/file");
    const auto last = ToUnixPath(u"C:\\dATA\\New.jpg");
    EXPECT_EQ(last.error, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(last.path, c + "/Data/New.jpg") << "ready to be created";
    EXPECT_FALSE(last.exists);
    std::filesystem::create_symlink("nowhere", c + "/dangling");
    for (const auto* path : {u"C:\\None\\x", u"C:\\Data\\None\\x", u"C:\\Data\\file\\x", u"C:\\dATA\\file\\x",
                             u"C:\\dangling\\x", u"Q:\\x", u"Q:", u"Data\\file", u""})
        EXPECT_EQ(ToUnixPath(path).error, ERROR_PATH_NOT_FOUND)
            << testing::PrintToString(std::u16string(path));
    EXPECT_EQ(ToUnixPath(u"Data").error, ERROR_FILE_NOT_FOUND);
    EXPECT_TRUE(ToUnixPath(u"C:\\dangling").exists);
    for (const auto* path : {u"\\\\srv", u"\\\\srv\\other\\x", u"\\\\?\\C:\\Data"})
        EXPECT_EQ(ToUnixPath(path).error, ERROR_BAD_NETPATH);
    std::filesystem::remove(c + "/dangling");
    std::filesystem::remove_all(c);
    EXPECT_EQ(ToUnixPath(u"C:\\").error, ERROR_PATH_NOT_FOUND);
}

TEST_F(Paths, RefuseNamesThatThePlatformRefuses) {
    for (const char16_t bad : std::u16string(u"<>:\"|?*\x01\x1F") + u'\0')
        EXPECT_EQ(ToUnixPath(std::u16string(u"C:\\a") + bad).error, ERROR_INVALID_NAME) << int{bad};
    EXPECT_EQ(ToUnixPath(u"C:\\Base\\C:\\Data\\x.jpg").error, ERROR_INVALID_NAME);
    EXPECT_EQ(ToUnixPath(u"C:\\a?\\..\\x").error, ERROR_INVALID_NAME);
    EXPECT_EQ(ToUnixPath(u"C:x").error, ERROR_INVALID_NAME);
}

TEST_F(Paths, TakeOutDotsWithoutLeavingTheRoot) {
    drives.MakeFile("c/x");
    drives.MakeFile("outside");
    EXPECT_EQ(ToUnixPath(u"C:\\no\\.\\..\\x").path, c + "/x");
    EXPECT_EQ(ToUnixPath(u"C:\\..\\..\\x").path, c + "/x");
    EXPECT_EQ(ToUnixPath(u"C:\\..\\outside").error, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(ToUnixPath(u"\\\\srv\\share\\..\\..\\..\\outside").path, share + "/outside");
}

TEST_F(Paths, MapRootsAndShares) {
    fm::CurrentSession().drives.push_back({"E:", "", false});
    EXPECT_EQ(ToUnixPath(u"E:\\").path, "/");
    EXPECT_EQ(ToUnixPath(u"C:\\").path, c);
    EXPECT_EQ(ToUnixPath(u"\\\\SRV\\Share").path, share);
    EXPECT_EQ(ToUnixPath(u"//srv/share/new").path, share + "/new");
    EXPECT_EQ(ToNativePath(c), u"C:\\") << "the drive that covers it most closely";
    EXPECT_EQ(ToNativePath(c + "/a/ü"), u"C:\\a\\ü");
    EXPECT_EQ(ToNativePath(share + "/x"), u"\\\\srv\\share\\x");
    EXPECT_EQ(ToNativePath("/usr"), u"E:\\usr");
    EXPECT_EQ(ToNativePath(c + "/a\\b"), std::nullopt);
    fm::CurrentSession().drives.pop_back();
    EXPECT_EQ(ToNativePath("/usr"), std::nullopt);
    EXPECT_EQ(ToNativePath(c + "x"), std::nullopt);
}

TEST_F(Paths, ReachNamesWithMalformedBytes) {
    const std::string file = drives.MakeFile("c/caf\xE9.jpg");
    drives.MakeFile("c/caf\xE8.jpg");
    const auto native = ToNativePath(file);
    ASSERT_TRUE(native);
    EXPECT_EQ(ToUnixPath(*native).path, file);
    const auto other = ToUnixPath(u"C:\\CAF\uEFEA.jpg");
    EXPECT_EQ(other.error, ERROR_FILE_NOT_FOUND) << "another byte is not another case";
    EXPECT_EQ(ToUnixPath(u"C:\\CAF\uEFE9.jpg").path, file);
}

TEST_F(Paths, BoundTheWorkOnLongPaths) {
    EXPECT_EQ(ToUnixPath(u"C:\\" + std::u16string(300, u'n')).error, ERROR_FILENAME_EXCED_RANGE);
    EXPECT_EQ(ToUnixPath(u"C:\\" + std::u16string(40'000, u'\\')).error, ERROR_FILENAME_EXCED_RANGE);
    std::u16string deep = u"C:";
    for (int i = 0; i < 16'000; ++i) deep += u"\\x";
    EXPECT_NE(ToUnixPath(deep).error, ERROR_SUCCESS);
    std::filesystem::create_symlink("loop", c + "/loop");
    EXPECT_EQ(ToUnixPath(u"C:\\loop\\x").error, ERROR_CANT_RESOLVE_FILENAME);
}

} // namespace
} // namespace win32
