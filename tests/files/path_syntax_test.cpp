#include "files/file_spec.h"

#include "tests/support/fake_host.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace corvane {
namespace {

// "flags|volume|folder/folder|name code": a parse in one line.
std::string Parsed(const XFileSpec& spec, std::int32_t code) {
    std::string text = std::to_string(spec.flags) + "|" + spec.volume + "|";
    for (const std::string& folder : spec.folders) text += folder + "/";
    return text + "|" + spec.name + " " + std::to_string(code);
}

struct PathSyntax : testing::Test {
    PathSyntax() {
        drives.Map("C:", "c");
        drives.Map("D:", "d");
        drives.Map(R"(\\srv\share)", "s");
        drives.MakeFile("c/Data/Pics/a.jpg");
        drives.MakeFile("d/x.txt");
        drives.MakeFile("s/dir/x.txt");
        base.SetFromNativePath("C:\\Data");
        share_base.SetFromNativePath(R"(\\srv\share\dir)");
    }

    std::string Host(std::string_view text, bool has_prefix) {
        const std::int32_t code = spec.SetFromFileMakerPath(text, &base, has_prefix);
        return Parsed(spec, code);
    }
    std::string Native(std::string_view text) {
        const std::int32_t code = spec.SetFromNativePath(text);
        return Parsed(spec, code);
    }
    std::string Posix(std::string_view text) {
        const std::int32_t code = spec.SetFromPosixPath(text);
        return Parsed(spec, code);
    }
    std::string Any(std::string_view text) {
        const std::int32_t code = spec.SetFromText(text, &base);
        return Parsed(spec, code);
    }

    test::ScratchDrives drives;
    XFileSpec base;
    XFileSpec share_base;
    XFileSpec spec;
};

TEST_F(PathSyntax, PrefixesAreWordsWithoutTheirColon) {
    for (const auto* word : {"moviemac", "moviewin", "movie", "imagemac", "imagewin", "image", "filemac",
                             "filewin", "filenet", "file"})
        EXPECT_EQ(FindPathPrefix(std::string(word) + ":x"), word);
    EXPECT_EQ(FindPathPrefix("files/x.txt"), "file");
    EXPECT_EQ(FindPathPrefix("imagewindow"), "imagewin");
    EXPECT_EQ(FindPathPrefix("File:x"), "");
    EXPECT_EQ(FindPathPrefix("fil"), "");
}

TEST_F(PathSyntax, HostPathsThatAreAbsolute) {
    EXPECT_EQ(Host("imagewin:/C:/Data/Pics/a.jpg", true), "0|C:|Data/Pics/|a.jpg 0");
    EXPECT_EQ(Host("/C:/Data/Pics/", false), "0|C:|Data/|Pics 0");
    EXPECT_EQ(Host("filenet;/C:/Data", true), "0|C:||Data 0")
        << "whatever stands after the word is its colon";
    EXPECT_EQ(Host("fileé/C:/Data", true), "0|C:||Data 0");
    EXPECT_EQ(Host("/C:", false), "0|C:|| 0");
    EXPECT_EQ(Host("/C:/", false), "0|C:|| 0");
    EXPECT_EQ(Host("filewin://srv/share/dir/x.txt", true), "2|\\|srv/share/dir/|x.txt 0");
    EXPECT_EQ(Host("//srv/share/none/x.txt", false), "2|\\|srv/share/none/|x.txt -120");
    EXPECT_EQ(Host("//srv/nothing/x.txt", false), "2|\\|srv/nothing/|x.txt 53");
    EXPECT_EQ(Host("//srv", false), "2|\\||srv 53");
    EXPECT_EQ(Host("/c:/data/pics/A.JPG", false), "0|c:|data/pics/|A.JPG 0");
    EXPECT_EQ(Host("/C:/Data/none.jpg", false), "0|C:|Data/|none.jpg -43");
    EXPECT_EQ(Host("/C:/None/none.jpg", false), "0|C:|None/|none.jpg -120");
    EXPECT_EQ(Host("/Q:/x", false), "0|Q:||x -120");
    EXPECT_EQ(Host("/", false), "0||| -35");
    EXPECT_EQ(Host("/C:/Data//Pics/a.jpg", false), "0|C:|Data/|/Pics/a.jpg 0")
        << "a doubled separator ends the split";
    EXPECT_EQ(Host("/C:/Data/../Data/Pics", false), "0|C:|Data/../Data/|Pics 0")
        << "the platform takes it out";
}

TEST_F(PathSyntax, HostPathsThatAreRelative) {
    EXPECT_EQ(Host("Pics/a.jpg", false), "0|C:|Data/Pics/|a.jpg 0");
    EXPECT_EQ(Host("image:Pics/a.jpg", true), "0|C:|Data/Pics/|a.jpg 0");
    EXPECT_EQ(Host("./Pics/./../../Data/Pics/", false), "0|C:|Data/|Pics 0");
    EXPECT_EQ(Host("", false), "0|C:||Data 0");
    EXPECT_EQ(Host("", true), "0|C:||Data 0");
    EXPECT_EQ(Host("..", false), "0|C:|Data/|.. 0") << "without a separator all of it is the name";
    EXPECT_EQ(Host("../", false), "0|C:|| 0");
    EXPECT_EQ(Host("../../x", false).substr(Host("../../x", false).rfind(' ')), " -120");
    EXPECT_EQ(Host("Pics//a.jpg", false), "0|C:|Data/Pics//|a.jpg 0");
    EXPECT_EQ(Host("C:\\Data\\Pics\\a.jpg", false), "0|C:|Data/|C:\\Data\\Pics\\a.jpg 123");
    EXPECT_EQ(spec.SetFromFileMakerPath("Pics/a.jpg", false), -120) << "no base";
    base.name = "Pics/a.jpg";
    EXPECT_EQ(spec.SetFromFileMakerPath("x", &base, false), -120) << "the base is a file";
}

TEST_F(PathSyntax, HostPathsNeedOrRefuseThePrefix) {
    EXPECT_EQ(spec.SetFromFileMakerPath("files/x.txt", &base, false), -50);
    EXPECT_EQ(spec.SetFromFileMakerPath("movies/a.mov", &base, false), -50);
    EXPECT_EQ(spec.SetFromFileMakerPath("/C:/Data", &base, true), -50);
    EXPECT_EQ(spec.SetFromFileMakerPath("Pics/a.jpg", &base, true), -50);
}

TEST_F(PathSyntax, RelativeToItself) {
    EXPECT_EQ(base.SetFromFileMakerPath("Pics/a.jpg", &base, false), 0);
    EXPECT_EQ(Parsed(base, 0), "0|C:|Data/Pics/|a.jpg 0");
}

TEST_F(PathSyntax, NativePaths) {
    EXPECT_EQ(Native("c:\\Data\\Pics\\a.jpg"), "0|C:|Data/Pics/|a.jpg 0");
    EXPECT_EQ(Native("C:\\Data\\"), "0|C:||Data 0");
    EXPECT_EQ(Native("C:\\"), "0|C:|| 0");
    EXPECT_EQ(Native("\\\\srv\\share\\dir\\x.txt"), "2|\\|srv/share/dir/|x.txt 0");
    EXPECT_EQ(Native("\\\\srv\\share"), "2|\\|srv/|share 0");
    EXPECT_EQ(Native("\\\\srv"), "2|\\||srv 53");
    EXPECT_EQ(Native("\\\\"), "2|\\|| 53");
    EXPECT_EQ(Native("C:\\Data\\none"), "0|C:|Data/|none -43");
    EXPECT_EQ(Native("C:\\none"), "0|C:||none -43");
    EXPECT_EQ(Native("C:\\None\\none"), "0|C:|None/|none 3") << "the platform's number stands";
    EXPECT_EQ(Native("C:\\a?"), "0|C:||a? 123");
    for (const auto* text : {"", "C", "C:", "C:Data", "Data\\x", "\\Data", "1:\\x", "C:/Data"})
        EXPECT_EQ(Native(text), "0||| -35") << text;
    EXPECT_EQ(spec.SetFromNativePathW(u"C:\\Data\\Pics\\ä"), -43);
    EXPECT_EQ(spec.name, "ä");
}

TEST_F(PathSyntax, MacPaths) {
    EXPECT_EQ(Posix("/Volumes/D:/x.txt"), "0|D:||x.txt 0");
    EXPECT_EQ(Posix("/Volumes/D:"), "0|D:|| 0");
    EXPECT_EQ(Posix("/Volumes/"), "0|C:||Volumes -43");
    EXPECT_EQ(Posix("/Volumes"), "0|C:||Volumes -43");
    EXPECT_EQ(Posix("/Data/Pics/a.jpg"), "0|C:|Data/Pics/|a.jpg 0");
    EXPECT_EQ(Posix("/"), "0|C:|| 0");
    EXPECT_EQ(Posix("x"), "0||| -35");
    EXPECT_EQ(Posix("/Volumes//x"), "0|||x 3");
}

TEST_F(PathSyntax, AnyTextFindsItsSyntax) {
    EXPECT_EQ(Any("d:\\x.txt"), "0|D:||x.txt 0");
    EXPECT_EQ(Any("\\\\srv\\share\\dir\\x.txt"), "2|\\|srv/share/dir/|x.txt 0");
    EXPECT_EQ(Any("/Volumes/D:/x.txt"), "0|D:||x.txt 0");
    EXPECT_EQ(Any("/D:/x.txt"), "0|C:|D:/|x.txt 123") << "a Mac path on the system volume";
    EXPECT_EQ(Any("imagewin:/D:/x.txt"), "0|D:||x.txt 0");
    EXPECT_EQ(Any("image:Pics/a.jpg"), "0|C:|Data/Pics/|a.jpg 0");
    EXPECT_EQ(Any("file:a"), "0|C:|Data/|file:a 123") << "two characters after the word are too few";
    EXPECT_EQ(Any("files"), "0|C:|Data/|files -43");
    EXPECT_EQ(Any("files\\x/y"), "0|C:|Data/files/|x/y -120");
    EXPECT_EQ(Any("files/x"), "0|C:|Data/files/|x -120");
    EXPECT_EQ(Any("Pics\\a.jpg"), "0|C:|Data/Pics/|a.jpg 0");
    EXPECT_EQ(Any("..\\Data\\Pics\\"), "0|C:|Data/|Pics 0");
    EXPECT_EQ(Any("Pics/a.jpg"), "0|C:|Data/|Pics/a.jpg 0") << "only the backslash separates here";
    EXPECT_EQ(Any("~/x"), "0|C:|Data/~/|x -120");
    EXPECT_EQ(Any("size:640,480"), "0|C:|Data/|size:640,480 123");
    EXPECT_EQ(spec.SetFromText("\\x", &base), -43);
    EXPECT_EQ(spec.SetFromText("x", nullptr), -120);
}

TEST_F(PathSyntax, RelativePathsOnAShareLoseTheFlagWithBackslashes) {
    EXPECT_EQ(spec.SetRelativeTo("x.txt", &share_base, '\\'), 0);
    EXPECT_EQ(spec.flags, kNetworkItem);
    EXPECT_EQ(spec.SetRelativeTo("../dir/x.txt", &share_base, '/'), 0);
    EXPECT_EQ(spec.flags, kNetworkItem);
    EXPECT_EQ(spec.SetRelativeTo("..\\dir\\x.txt", &share_base, '\\'), 0);
    EXPECT_EQ(spec.flags, 0U);
}

TEST_F(PathSyntax, NameRecords) {
    const std::string path = "D:\\x.txt";
    std::vector<unsigned char> record(6, 0xFF);
    record.push_back(static_cast<unsigned char>(path.size()));
    record.insert(record.end(), path.begin(), path.end());
    EXPECT_EQ(spec.SetFromNameRecord(record), 0);
    EXPECT_EQ(Parsed(spec, 0), "0|D:||x.txt 0");
    record.resize(record.size() - 1);
    EXPECT_EQ(spec.SetFromNameRecord(record), -50) << "shorter than its length byte";
    EXPECT_EQ(spec.SetFromNameRecord(std::span(record).first(6)), -50);
}

TEST_F(PathSyntax, LongTextsEndInACode) {
    std::string deep;
    for (int i = 0; i < 200'000; ++i) deep += "x/";
    EXPECT_EQ(spec.SetFromFileMakerPath(deep, &base, false), 206);
    std::string up;
    for (int i = 0; i < 200'000; ++i) up += "../";
    EXPECT_EQ(spec.SetFromFileMakerPath(up, &base, false), -120);
    EXPECT_EQ(spec.SetFromText(std::string(1'000'000, 'n'), &base), 206);
    std::string detour;
    for (int i = 0; i < 100'000; ++i) detour += "x/../";
    EXPECT_EQ(spec.SetFromFileMakerPath(detour + "Pics/a.jpg", &base, false), 0);
}

} // namespace
} // namespace corvane
