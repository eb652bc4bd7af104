#include "files/file_spec.h"

#include "tests/support/drive_test.h"

#include <string>
#include <vector>

namespace corvane {
namespace {

struct PathSyntax : test::DriveTest {
    PathSyntax() {
        drives.Map("D:", "d");
        drives.Map(R"(\\srv\share)", "s");
        drives.MakeFile("c/Data/Pics/a.jpg");
        drives.MakeFile("d/x.txt");
        drives.MakeFile("s/dir/x.txt");
        base.SetFromNativePath("C:\\Data");
        share_base.SetFromNativePath(R"(\\srv\share\dir)");
    }

    // "flags|volume|folder/folder|name code": what the parse that gave the code made of `spec`.
    [[nodiscard]] std::string Parsed(std::int32_t code) const {
        std::string text = std::to_string(spec.flags) + "|" + spec.volume + "|";
        for (const std::string& folder : spec.folders) text += folder + "/";
        return text + "|" + spec.name + " " + std::to_string(code);
    }
    std::string Host(std::string_view text, bool has_prefix = false) {
        return Parsed(spec.SetFromFileMakerPath(text, &base, has_prefix));
    }
    std::string Native(std::string_view text) { return Parsed(spec.SetFromNativePath(text)); }
    std::string Posix(std::string_view text) { return Parsed(spec.SetFromPosixPath(text)); }
    std::string Any(std::string_view text) { return Parsed(spec.SetFromText(text, &base)); }

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
    EXPECT_EQ(Host("/C:/Data/Pics/"), "0|C:|Data/|Pics 0");
    EXPECT_EQ(Host("filenet;/C:/Data", true), "0|C:||Data 0")
        << "whatever stands after the word is its colon";
    EXPECT_EQ(Host("fileé/C:/Data", true), "0|C:||Data 0");
    EXPECT_EQ(Host("/C:"), "0|C:|| 0");
    EXPECT_EQ(Host("filewin://srv/share/dir/x.txt", true), "2|\\|srv/share/dir/|x.txt 0");
    EXPECT_EQ(Host("//srv/share/none/x.txt"), "2|\\|srv/share/none/|x.txt -120");
    EXPECT_EQ(Host("//srv/nothing/x.txt"), "2|\\|srv/nothing/|x.txt 53");
    EXPECT_EQ(Host("//srv"), "2|\\||srv 53");
    EXPECT_EQ(Host("/c:/data/pics/A.JPG"), "0|c:|data/pics/|A.JPG 0");
    EXPECT_EQ(Host("/C:/Data/none.jpg"), "0|C:|Data/|none.jpg -43");
    EXPECT_EQ(Host("/C:/None/none.jpg"), "0|C:|None/|none.jpg -120");
    EXPECT_EQ(Host("/Q:/x"), "0|Q:||x -120");
    EXPECT_EQ(Host("/"), "0||| -35");
    EXPECT_EQ(Host("/C:/Data//Pics/a.jpg"), "0|C:|Data/|/Pics/a.jpg 0")
        << "a doubled separator ends the split";
    EXPECT_EQ(Host("/C:/Data/../Data/Pics"), "0|C:|Data/../Data/|Pics 0") << "the platform takes it out";
}

TEST_F(PathSyntax, HostPathsThatAreRelative) {
    EXPECT_EQ(Host("Pics/a.jpg"), "0|C:|Data/Pics/|a.jpg 0");
    EXPECT_EQ(Host("image:Pics/a.jpg", true), "0|C:|Data/Pics/|a.jpg 0");
    EXPECT_EQ(Host("./Pics/./../../Data/Pics/"), "0|C:|Data/|Pics 0");
    EXPECT_EQ(Host(""), "0|C:||Data 0");
    EXPECT_EQ(Host("", true), "0|C:||Data 0");
    EXPECT_EQ(Host(".."), "0|C:|Data/|.. 0") << "without a separator all of it is the name";
    EXPECT_EQ(Host("../"), "0|C:|| 0");
    EXPECT_TRUE(Host("../../x").ends_with(" -120"));
    EXPECT_EQ(Host("Pics//a.jpg"), "0|C:|Data/Pics//|a.jpg 0");
    EXPECT_EQ(Host("C:\\Data\\Pics\\a.jpg"), "0|C:|Data/|C:\\Data\\Pics\\a.jpg 123");
    EXPECT_EQ(spec.SetFromFileMakerPath("Pics/a.jpg", false), -120) << "no base";
    spec = base;
    EXPECT_EQ(Parsed(spec.SetFromFileMakerPath("Pics/a.jpg", &spec, false)), "0|C:|Data/Pics/|a.jpg 0");
    base.name = "Pics/a.jpg";
    EXPECT_EQ(spec.SetFromFileMakerPath("x", &base, false), -120) << "the base is a file";
}

TEST_F(PathSyntax, HostPathsNeedOrRefuseThePrefix) {
    for (const auto* path : {"files/x.txt", "movies/a.mov"})
        EXPECT_EQ(spec.SetFromFileMakerPath(path, &base, false), -50) << path;
    for (const auto* path : {"/C:/Data", "Pics/a.jpg"})
        EXPECT_EQ(spec.SetFromFileMakerPath(path, &base, true), -50) << path;
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
    EXPECT_EQ(Parsed(spec.SetFromNameRecord(record)), "0|D:||x.txt 0");
    record.resize(record.size() - 1);
    EXPECT_EQ(spec.SetFromNameRecord(record), -50) << "shorter than its length byte";
    EXPECT_EQ(spec.SetFromNameRecord(std::span(record).first(6)), -50);
}

TEST_F(PathSyntax, LongTextsEndInACode) {
    const auto code_of_many = [&](std::string_view part, const char* end = "") {
        std::string text;
        for (int i = 0; i < 200'000; ++i) text += part;
        return spec.SetFromFileMakerPath(text + end, &base, false);
    };
    EXPECT_EQ(code_of_many("x/"), 206);
    EXPECT_EQ(code_of_many("../"), -120);
    EXPECT_EQ(code_of_many("x/../", "Pics/a.jpg"), 0);
    EXPECT_EQ(spec.SetFromText(std::string(1'000'000, 'n'), &base), 206);
}

} // namespace
} // namespace corvane
