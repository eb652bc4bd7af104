#include "files/file_spec.h"

#include "tests/support/drive_test.h"

#include <utility>

namespace corvane {
namespace {

struct FileSpec : test::DriveTest {
    FileSpec() {
        drives.Map("D:", "d");
        drives.Map(R"(\\srv\share)", "s");
        drives.MakeFile("c/Data/Märchen/ü.wav");
        drives.MakeFile("c/Db/Media.fp7");
        drives.MakeFile("c/Db/img/x.jpg");
        drives.MakeFile("s/dir/x.txt");
    }

    static XFileSpec At(std::string_view native) {
        XFileSpec spec;
        spec.SetFromNativePath(native);
        return spec;
    }
    // "text code"
    static std::string Shown(const PathText& path) { return path.text + " " + std::to_string(path.code); }
    static std::string Host(std::string_view native, const char* word = "") {
        return Shown(At(native).GetFileMakerPath(word));
    }
};

TEST(VxObjects, DestroyThemselvesWithTheLastReference) {
    struct Watched : XFileSpec {
        explicit Watched(int& count) : left(count) {}
        ~Watched() override { --left; }
        int& left;
    };
    int alive = 1;
    auto* object = new Watched(alive);
    object->AddRef();
    const XFileSpec copy = *object;
    EXPECT_EQ(object->Release(), 1);
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(object->Release(), 0);
    EXPECT_EQ(alive, 0);
    EXPECT_EQ((new XFileSpec(copy))->Release(), 0) << "a copy has one reference";
}

TEST_F(FileSpec, NativePathsOfFoldersEndWithASeparator) {
    for (const auto* path : {"C:\\", "C:\\Data\\", "C:\\Data\\Märchen\\ü.wav", "C:\\none", R"(\\srv\share\)",
                             R"(\\srv\share\dir\x.txt)"})
        EXPECT_EQ(At(path).GetNativePath(), path);
    EXPECT_EQ(At("C:\\Data").GetNativePathW(), u"C:\\Data\\");
    EXPECT_EQ(At("C:\\None\\").GetNativePath(), "C:\\None");
    XFileSpec inside = At("C:\\Data");
    inside.folders.push_back(std::exchange(inside.name, {}));
    EXPECT_EQ(inside.GetNativePath(), "C:\\Data\\");
}

TEST_F(FileSpec, HostPathTexts) {
    EXPECT_EQ(Host("C:\\Data\\Märchen\\ü.wav"), "/C:/Data/Märchen/ü.wav 0");
    EXPECT_EQ(Host("C:\\Data\\", "file"), "filewin:/C:/Data 0");
    EXPECT_EQ(Host("C:\\"), "/C: 0");
    EXPECT_EQ(Host("C:\\none", "movie"), "moviewin:/C:/none -43");
    EXPECT_EQ(Host("\\\\srv\\share\\dir\\x.txt", "file"), "filewin://srv/share/dir/x.txt 0");
    EXPECT_EQ(Host("\\\\srv\\share\\dir", "image"), "imagewin://srv/share/dir 0");
    EXPECT_EQ(Host("\\\\srv\\share\\dir"), "//srv/share/dir/ 0") << "the folder's native path with slashes";
    EXPECT_EQ(Host(""), "/ -35");
}

TEST_F(FileSpec, RelativePaths) {
    const auto relative = [](std::string_view native, std::string_view base, const char* word = "") {
        return Shown(At(native).GetRelativePath(word, At(base)));
    };
    EXPECT_EQ(relative("C:\\Db\\img\\x.jpg", "C:\\Db\\", "image"), "image:img/x.jpg 0");
    EXPECT_EQ(relative("C:\\Data\\Märchen\\ü.wav", "C:\\Db\\", "movie"), "movie:../Data/Märchen/ü.wav 0");
    EXPECT_EQ(relative("C:\\Db\\img\\", "C:\\Db\\"), "img 0");
    EXPECT_EQ(relative("C:\\Db\\", "C:\\Db\\", "file"), "file: 0");
    EXPECT_EQ(relative("C:\\", "C:\\Db\\"), ".. 0");
    EXPECT_EQ(relative("C:\\Db\\", "C:\\", "file"), "file:Db 0");
    EXPECT_EQ(relative("C:\\db\\img\\x.jpg", "C:\\Db\\"), "../db/img/x.jpg 0") << "compared as written";
    EXPECT_EQ(relative("C:\\Db\\none", "C:\\Db\\", "file"), "file:none -43");
    EXPECT_EQ(relative("C:\\Db\\img", "C:\\Db\\Media.fp7"), "../img -120") << "the base is a file";
    EXPECT_EQ(relative("D:\\", "C:\\Db\\", "file"), " -35");
    EXPECT_EQ(relative("D:\\", "D:\\", "file"), " -35") << "not the system volume";
}

TEST_F(FileSpec, NamesAndParents) {
    XFileSpec spec = At("C:\\Data\\Märchen\\ü.wav");
    EXPECT_EQ(spec.GetName(), "ü.wav");
    for (const auto* parent : {"C:\\Data\\Märchen\\", "C:\\Data\\", "C:\\", "C:\\"}) {
        spec.MoveToParent();
        EXPECT_EQ(spec.GetNativePath(), parent);
    }
    EXPECT_EQ(spec.GetName(), "C:");

    XFileSpec inside;
    inside.volume = "C:";
    inside.folders = {"Data", "Märchen", "none"};
    EXPECT_EQ(inside.GetName(), "none");
    inside.MoveToParent();
    EXPECT_EQ(inside.GetNativePath(), "C:\\Data\\Märchen\\");
    EXPECT_EQ(inside.name, "Märchen");
    inside.folders = {"Data"};
    inside.name.clear();
    inside.MoveToParent();
    EXPECT_TRUE(inside.folders.empty() && inside.name.empty());
}

} // namespace
} // namespace corvane
