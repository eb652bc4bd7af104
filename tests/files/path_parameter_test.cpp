#include "files/path_parameter.h"

#include "files/database_folder.h"
#include "files/default_folder.h"
#include "files/special_folders.h"
#include "platform/fmwrapper/objects.h"
#include "plugin/results.h"
#include "tests/support/drive_test.h"
#include "tests/support/environment_variable.h"

#include <memory>

namespace corvane {
namespace {

struct PathParameter : test::DriveTest {
    PathParameter() {
        drives.Map(R"(\\srv\share)", "s");
        drives.MakeFile("c/Pics/a.jpg");
        drives.MakeFile("c/A/B/日本.txt");
        drives.MakeFolder("c/tmp/sub");
        temporary.Set(c + "/tmp");
        DefaultFolder().SetFromNativePath(R"(C:\A\B\)");
    }
    ~PathParameter() override {
        DiscardResultBuffer();
        DefaultFolder().Clear();
    }

    // "native path code" of a text parameter.
    std::string Resolved(std::u16string text) {
        const std::int32_t code = ResolvePathParameter(FM_Data(std::move(text)), spec);
        return spec.GetNativePath() + " " + std::to_string(code);
    }
    std::int32_t Code(std::u16string text) { return ResolvePathParameter(FM_Data(std::move(text)), spec); }

    static std::u16string TakeResult() {
        FM_Data result;
        FinishResult(result);
        return result.AsText().units;
    }

    test::FakeHost host;
    test::EnvironmentVariable temporary{"TMPDIR", std::nullopt};
    XFileSpec spec;
};

TEST_F(PathParameter, CountsFromTheDefaultFolder) {
    EXPECT_EQ(Resolved(u"日本.txt"), "C:\\A\\B\\日本.txt 0");
    EXPECT_EQ(Resolved(u""), "C:\\A\\B\\ 0");
    EXPECT_EQ(Resolved(u"../x.txt"), "C:\\A\\x.txt -43");
    EXPECT_EQ(Resolved(u"../../Pics/a.jpg\rrest"), "C:\\Pics\\a.jpg 0");
    EXPECT_EQ(Code(u"../../../x"), -120);
    EXPECT_EQ(ResolvePathParameter(FM_Data(*fm::Decimal::Parse("12.5")), spec), -43);
    EXPECT_EQ(spec.name, "12.5");
    ResetDefaultFolder();
    EXPECT_EQ(Resolved(u"Pics/a.jpg"), "C:\\Pics\\a.jpg 0");
    DefaultFolder().SetFromNativePath("C:\\Pics");
    EXPECT_EQ(ResolvePathParameter(FM_Data(u"../A/B"), DefaultFolder()), 0);
    EXPECT_EQ(DefaultFolder().GetNativePath(), "C:\\A\\B\\");
}

TEST_F(PathParameter, TakesTheAbsoluteLineOfAReference) {
    EXPECT_EQ(Resolved(u"imagewin:/C:/Pics/a.jpg"), "C:\\Pics\\a.jpg 0");
    EXPECT_EQ(Resolved(u"size:10,10\rimage:a.jpg\rimagewin:/C:/Pics/a.jpg\r"), "C:\\Pics\\a.jpg 0");
    EXPECT_EQ(Resolved(u"filewin://srv/share/x\rfilewin:/C:/Pics"), "\\\\srv\\share\\x -43");
    EXPECT_EQ(Code(u"xwin:/C:/Pics/a.jpg"), -50);
    EXPECT_EQ(Code(u"size:10,10\rimage:a.jpg"), 123) << "only the first line counts without such a line";

    FM_BinaryData container;
    container.reference = u"size:0,0\rfile:x\rfilewin:/C:/Pics/a.jpg";
    FM_Data parameter;
    parameter.SetContainer(container);
    EXPECT_EQ(ResolvePathParameter(parameter, spec), 0);
    EXPECT_EQ(spec.GetNativePath(), "C:\\Pics\\a.jpg");
    container.streams.push_back({0x4A504547, std::make_shared<fm::Bytes>(4)});
    parameter.SetContainer(container);
    EXPECT_EQ(ResolvePathParameter(parameter, spec), kEmbeddedContainer);
}

TEST_F(PathParameter, KnowsTheSpecialFolders) {
    fm::CurrentSession().application_file = c + "/bin/host";
    test::EnvironmentVariable home("HOME", c);
    const test::EnvironmentVariable configuration("XDG_CONFIG_HOME", std::nullopt);
    EXPECT_EQ(Resolved(u".T"), "C:\\tmp\\ 0");
    EXPECT_EQ(Resolved(u".t/sub/x.wav"), "C:\\tmp\\sub\\x.wav -43");
    EXPECT_EQ(Resolved(u".T/"), "C:\\tmp\\ 0");
    EXPECT_EQ(Resolved(u".Tsub"), "C:\\tmp\\ 0") << "no slash, no path";
    EXPECT_EQ(Resolved(u".T/../Pics/a.jpg"), "C:\\Pics\\a.jpg 0");
    EXPECT_EQ(Code(u".T/file/x"), -50);
    EXPECT_EQ(Resolved(u".A"), "C:\\bin 0") << "it need not exist";
    EXPECT_EQ(Code(u".A/x"), -120);
    EXPECT_EQ(Resolved(u".D"), "C:\\Desktop 0");
    EXPECT_EQ(Resolved(u".r/Pics"), "C:\\Pics\\ 0");
    EXPECT_EQ(Resolved(u".S"), "C:\\Windows\\System32 0");
    EXPECT_EQ(Resolved(u".w"), "C:\\Windows 0");
    EXPECT_EQ(TakeResult(), u"");
    temporary.Set("/outside");
    EXPECT_EQ(Code(u".T"), 3);
    home.Set("/outside");
    spec.SetFromNativePath("C:\\Pics");
    EXPECT_EQ(Resolved(u".D"), "C:\\Pics\\ 0") << "an unknown desktop changes nothing";
}

TEST_F(PathParameter, ReportsUnknownCodes) {
    for (const auto* text : {u"./x", u".", u".x", u".é/x", u".1"}) {
        EXPECT_EQ(Code(text), kUnknownSpecialFolder);
        EXPECT_EQ(TakeResult(), u"$20103:Unrecognized code - must be A, T, D, R, S, W, V, or U");
    }
    EXPECT_EQ(Code(u".."), 0) << "the parent folder, no code";
}

TEST_F(PathParameter, LetsTheUserChoose) {
    fm::CurrentSession().answers = {"folder:C:\\Pics", "folder:C:\\Pics", "cancel", "file:C:\\Pics\\ä.jpg"};
    EXPECT_EQ(Resolved(u".U"), "C:\\Pics\\ 0");
    EXPECT_EQ(Resolved(u".u/a.jpg"), "C:\\Pics\\a.jpg 0");
    EXPECT_EQ(Code(u".U:Choose"), -128);
    EXPECT_EQ(Resolved(u".V:Wähle"), "C:\\Pics\\ 0");
    EXPECT_EQ(TakeResult(), u"ä.jpg");
    EXPECT_EQ(Code(u".V"), -128) << "no answer left";
}

TEST_F(PathParameter, FindsTheDatabase) {
    EXPECT_EQ(DatabaseFolder(spec), -108) << "the host tells none";
    const auto code = [&](std::u16string path) {
        host.file_path = std::move(path);
        return DatabaseFolder(spec);
    };
    EXPECT_EQ(code(u"fmnet:/host/Media"), kNetworkDatabase);
    EXPECT_EQ(code(u"file:/C:/A/B/日本.txt"), 0);
    EXPECT_EQ(spec.GetNativePath(), "C:\\A\\B\\日本.txt");
    EXPECT_EQ(code(u"file:/C:/A/None.fp7"), 0) << "not saved yet";
    EXPECT_EQ(code(u"file:/C:/None/Media.fp7"), -120);
    EXPECT_EQ(code(u"/C:/A"), -50);
}

} // namespace
} // namespace corvane
