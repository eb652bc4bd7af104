#include "files/file_spec.h"

#include "tests/support/fake_host.h"

#include <gtest/gtest.h>
#include <utility>

namespace corvane {
namespace {

struct FileSpec : testing::Test {
    FileSpec() {
        drives.Map("C:", "c");
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
    static std::pair<std::int32_t, std::string> Pair(const PathText& path) { return {path.code, path.text}; }

    using Expected = std::pair<std::int32_t, std::string>;
    test::ScratchDrives drives;
};

TEST(VxObjects, DestroyThemselvesWithTheLastReference) {
    struct Watched : VxObject {
        explicit Watched(int& count) : left(count) {}
        ~Watched() override { --left; }
        int& left;
    };
    int alive = 1;
    auto* object = new Watched(alive);
    object->AddRef();
    EXPECT_EQ(object->Release(), 1);
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(object->Release(), 0);
    EXPECT_EQ(alive, 0);

    auto* shared = new XFileSpec;
    shared->AddRef();
    const XFileSpec copy = *shared;
    EXPECT_EQ(shared->Release(), 1);
    EXPECT_EQ(shared->Release(), 0);
    EXPECT_EQ(std::make_unique<XFileSpec>(copy).release()->Release(), 0) << "a copy has one reference";
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
    EXPECT_EQ(Pair(At("C:\\Data\\Märchen\\ü.wav").GetFileMakerPath("")),
              Expected(0, "/C:/Data/Märchen/ü.wav"));
    EXPECT_EQ(Pair(At("C:\\Data\\").GetFileMakerPath("file")), Expected(0, "filewin:/C:/Data"));
    EXPECT_EQ(Pair(At("C:\\").GetFileMakerPath("")), Expected(0, "/C:"));
    EXPECT_EQ(Pair(At("C:\\none").GetFileMakerPath("movie")), Expected(-43, "moviewin:/C:/none"));
    EXPECT_EQ(Pair(At("\\\\srv\\share\\dir\\x.txt").GetFileMakerPath("file")),
              Expected(0, "filewin://srv/share/dir/x.txt"));
    EXPECT_EQ(Pair(At("\\\\srv\\share\\dir").GetFileMakerPath("image")),
              Expected(0, "imagewin://srv/share/dir"));
    EXPECT_EQ(Pair(At("\\\\srv\\share\\dir").GetFileMakerPath("")), Expected(0, "//srv/share/dir/"))
        << "without a word this is the folder's native path with slashes";
    EXPECT_EQ(Pair(XFileSpec().GetFileMakerPath("")), Expected(-35, "/"));
}

TEST_F(FileSpec, RelativePaths) {
    const XFileSpec db = At("C:\\Db\\");
    EXPECT_EQ(Pair(At("C:\\Db\\img\\x.jpg").GetRelativePath("image", db)), Expected(0, "image:img/x.jpg"));
    EXPECT_EQ(Pair(At("C:\\Data\\Märchen\\ü.wav").GetRelativePath("movie", db)),
              Expected(0, "movie:../Data/Märchen/ü.wav"));
    EXPECT_EQ(Pair(At("C:\\Db\\img\\").GetRelativePath("", db)), Expected(0, "img"));
    EXPECT_EQ(Pair(db.GetRelativePath("file", db)), Expected(0, "file:"));
    EXPECT_EQ(Pair(At("C:\\").GetRelativePath("", db)), Expected(0, ".."));
    EXPECT_EQ(Pair(db.GetRelativePath("file", At("C:\\"))), Expected(0, "file:Db"));
    EXPECT_EQ(Pair(At("C:\\db\\img\\x.jpg").GetRelativePath("", db)), Expected(0, "../db/img/x.jpg"))
        << "folders are compared as written";
    EXPECT_EQ(Pair(At("C:\\Db\\none").GetRelativePath("file", db)), Expected(-43, "file:none"));
    EXPECT_EQ(Pair(At("C:\\Db\\img").GetRelativePath("", At("C:\\Db\\Media.fp7"))), Expected(-120, "../img"))
        << "the base is a file";
    EXPECT_EQ(Pair(At("D:\\").GetRelativePath("file", db)), Expected(-35, ""));
    EXPECT_EQ(Pair(At("D:\\").GetRelativePath("file", At("D:\\"))), Expected(-35, ""))
        << "not the system volume";
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

TEST_F(FileSpec, Existence) {
    EXPECT_TRUE(At("C:\\Data").IsDirectory());
    EXPECT_FALSE(At("C:\\Db\\Media.fp7").IsDirectory());
    EXPECT_FALSE(At("C:\\none").IsDirectory());
    EXPECT_FALSE(XFileSpec().IsDirectory());
    EXPECT_EQ(At("C:\\db\\MEDIA.FP7").CheckExists(), 0);
    EXPECT_EQ(At("C:\\none").CheckExists(), -43);
    EXPECT_EQ(At("C:\\None\\none").CheckExists(), -120);
    EXPECT_EQ(At("\\\\none\\share\\x").CheckExists(), 53);
    EXPECT_EQ(At("x").CheckExists(), -35);
}

} // namespace
} // namespace corvane
