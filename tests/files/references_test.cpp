#include "files/references.h"

#include "files/local_files.h"
#include "files/temporary_files.h"
#include "platform/fmwrapper/objects.h"
#include "platform/text/utf.h"
#include "tests/support/drive_test.h"
#include "tests/support/environment_variable.h"

#include <filesystem>

namespace corvane {
namespace {

struct References : test::DriveTest {
    References() {
        drives.Map("D:", "d");
        drives.Map(R"(\\srv\share)", "s");
        for (const char* file :
             {"c/Db/img/x.jpg", "c/Other/x.jpg", "d/Pics/x.jpg", "s/dir/x.jpg", "c/Db/Media.fp7"})
            drives.MakeFile(file);
        host.file_path = u"file:/C:/Db/Media.fp7";
    }

    static std::string Put(const char* native_path, std::uint16_t width = 0, std::uint16_t height = 0) {
        XFileSpec file;
        file.SetFromNativePath(native_path);
        FM_Data result;
        const std::int32_t code = PutFileReferenceResult(result, file, "image", width, height);
        return code == 0 ? utf::ToUtf8(result.AsText().units) : std::to_string(code);
    }

    static std::string Resolve(std::string_view text) {
        XFileSpec file;
        const std::int32_t code = ResolveReferenceText(text, file);
        return code == 0 ? file.GetNativePath() : std::to_string(code);
    }

    test::FakeHost host;
};

TEST_F(References, NameTheFileFromTheDatabaseAndAbsolutely) {
    EXPECT_EQ(Put("C:\\Db\\img\\x.jpg", 640, 480),
              "size:640,480\rimage:img/x.jpg\rimagewin:/C:/Db/img/x.jpg");
    EXPECT_EQ(Put("C:\\Other\\x.jpg", 65535, 1),
              "size:65535,1\rimage:../Other/x.jpg\rimagewin:/C:/Other/x.jpg");
    EXPECT_EQ(Put("D:\\Pics\\x.jpg"), "size:0,0\rimage:x.jpg\rimagewin:/D:/Pics/x.jpg") << "another volume";
    EXPECT_EQ(Put("\\\\srv\\share\\dir\\x.jpg"), "size:0,0\rimage:x.jpg\rimagewin://srv/share/dir/x.jpg");
    EXPECT_EQ(Put("C:\\Db\\none.jpg"), "-43");
    host.file_path = u"fmnet:/host/Media";
    EXPECT_EQ(Put("C:\\Db\\img\\x.jpg"), "size:0,0\rimage:x.jpg\rimagewin:/C:/Db/img/x.jpg");
    host.file_path = u"file:/C:/Gone/Media.fp7";
    EXPECT_EQ(Put("C:\\Db\\img\\x.jpg"), "-120");
    host.file_path.reset();
    EXPECT_EQ(Put("C:\\Db\\img\\x.jpg"), "-108");
}

TEST_F(References, ResolveThroughTheFirstLineThatLeadsToAFile) {
    EXPECT_EQ(Resolve("size:10,10\rimage:img/x.jpg\rimagewin:/C:/Old/img/x.jpg"), "C:\\Db\\img\\x.jpg");
    EXPECT_EQ(Resolve("size:10,10\rimage:none.jpg\rimagewin:/D:/Pics/x.jpg"), "D:\\Pics\\x.jpg");
    EXPECT_EQ(Resolve("image:none.jpg\r\nD:\\Pics\\x.jpg"), "D:\\Pics\\x.jpg");
    EXPECT_EQ(Resolve("image:none.jpg\n\\\\srv\\share\\dir\\x.jpg\n"), "\\\\srv\\share\\dir\\x.jpg");
    EXPECT_EQ(Resolve("imagewin:/D:/Pics/none.jpg"), "-43");
    EXPECT_EQ(Resolve("imagewin:/D:/None/none.jpg"), "-120") << "the code of the last line";
    EXPECT_EQ(Resolve(""), "-43");
    host.file_path = u"fmnet:/host/Media";
    EXPECT_EQ(Resolve("image:img/x.jpg"), "-120") << "no folder to count from";
    EXPECT_EQ(Resolve("image:img/x.jpg\rimagewin:/C:/Db/img/x.jpg"), "C:\\Db\\img\\x.jpg");
}

TEST_F(References, ResolveSingleHostPaths) {
    XFileSpec file;
    EXPECT_EQ(ResolveFileMakerReference("movie:img/x.jpg", file), 0);
    EXPECT_EQ(file.GetNativePath(), "C:\\Db\\img\\x.jpg");
    EXPECT_EQ(ResolveFileMakerReference("img/x.jpg", file), -50) << "no path-type word";
    host.file_path = u"fmnet:/host/Media";
    EXPECT_EQ(ResolveFileMakerReference("movie:img/x.jpg", file), -120);
    EXPECT_EQ(ResolveFileMakerReference("moviewin:/D:/Pics/x.jpg", file), 0);
}

struct TemporaryFiles : References {
    TemporaryFiles() { temporary.Set(drives.MakeFolder("c/tmp")); }
    test::EnvironmentVariable temporary{"TMPDIR", std::nullopt};
};

TEST_F(TemporaryFiles, HaveFreshNamesThatLeaveNothingBehind) {
    XFileSpec first;
    XFileSpec second;
    ASSERT_EQ(MakeTemporaryFile(first, ".wav"), 0);
    ASSERT_EQ(MakeTemporaryFile(second, ".wav"), 0);
    EXPECT_TRUE(first.name.starts_with("tmp") && first.name.ends_with(".tmp.wav")) << first.name;
    EXPECT_NE(first.name, second.name);
    EXPECT_TRUE(std::filesystem::is_empty(drives.Path("c/tmp")));
    EXPECT_EQ(CreateNewFile(first), 0);
    EXPECT_EQ(CreateNewFile(first), -48);
    EXPECT_EQ(DeleteFileOf(first), 0);
    EXPECT_EQ(DeleteFileOf(first), 2);
    temporary.Set(drives.Path("c/none"));
    EXPECT_EQ(MakeTemporaryFile(first, ".wav"), -2);
    temporary.Set("/proc");
    EXPECT_EQ(MakeTemporaryFile(first, ".wav"), -1) << "no drive covers it";
}

TEST_F(TemporaryFiles, TellWhichFoldersCanBeWritten) {
    XFileSpec item;
    XFileSpec folder;
    item.SetFromNativePath("C:\\Db\\Media.fp7");
    EXPECT_EQ(IsFolderWritable(item).code, -1407);
    ASSERT_EQ(GetWritableParent(item, folder), 0);
    EXPECT_EQ(folder.GetNativePath(), "C:\\Db\\");
    EXPECT_EQ(test::CountEntries(drives.Path("c/Db")), 2) << "the probe is gone";

    drives.Map("P:", "p");
    fm::CurrentSession().drives.back().folder = "/proc/self"; // a folder in which nobody can create files
    item.SetFromNativePath("P:\\status");
    EXPECT_EQ(GetWritableParent(item, folder), -10000);
}

TEST_F(References, TellLocalFromRemoteFiles) {
    fm::CurrentSession().drives.push_back({"Z:", drives.MakeFolder("z"), true});
    EXPECT_TRUE(IsLocalFile("C:\\Db\\Media.fp7").local);
    EXPECT_TRUE(IsLocalFile("c:\\none").local);
    for (const char* invalid :
         {"", "C", "C:", "C:/x", "x.txt", "\\\\srv", R"(\\srv\share)", R"(\\\share\x)", "Z:\\x"})
        EXPECT_EQ(IsLocalFile(invalid).code, -35) << invalid;
    const FileLocality share = IsLocalFile(R"(\\srv\share\dir\x.jpg)");
    EXPECT_EQ(share.code, 0);
    EXPECT_FALSE(share.local);
}

} // namespace
} // namespace corvane
