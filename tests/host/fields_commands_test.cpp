// The commands on database files, with the plug-in's own functions.
#include "tests/host/program.h"

namespace host {
namespace {

using namespace std::string_literals;

class Fields : public Program {
protected:
    Fields() {
        EXPECT_EQ(Corvane("db create m.corvane").status, 0);
        EXPECT_EQ(
            Corvane("db table m.corvane media name:text size:number data:container copy:container").status,
            0);
        Write("in/b.txt", "bb");
        Write("in/deep/a.bin", std::string("\0\r\n\xFF", 4));
        // 2 by 1 pixels.
        Write("in/c.gif",
              "GIF89a\x02\0\x01\0\x80\0\0\0\0\0\xFF\xFF\xFF,\0\0\0\0\x02\0\x01\0\0\x02\x02\x44\x0A\0;"s);
    }

    void Import() const { ASSERT_EQ(Corvane("import m.corvane media data in --name-field name").status, 0); }
    [[nodiscard]] std::string Show(const std::string& options = {}) const {
        return Corvane("show m.corvane media " + options).output;
    }
};

TEST_F(Fields, ImportsFoldersAndShowsThem) {
    Finished run = Corvane("import m.corvane media data in --name-field name --progress always");
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(Contains(run.errors, "/3"));
    const std::string all = Show();
    EXPECT_TRUE(all.starts_with("id\tname\tsize\tdata\tcopy\n1\tb.txt\t\tFILE 2, FNAM ")) << all;
    EXPECT_TRUE(Contains(all, "\n2\tc.gif\t\tGIFf 35, SIZE 4, JPEG "));
    EXPECT_TRUE(Contains(all, "\n3\ta.bin\t\tFILE 4, FNAM "));
    EXPECT_TRUE(
        Show("--json --where 'name = \"C.GIF\" and id = 2'")
            .starts_with(R"({"id":2,"name":"c.gif",)"
                         R"("size":"","data":{"reference":"","streams":[{"type":"GIFf","size":35},)"));
    EXPECT_EQ(Corvane("show m.corvane").output,
              "media\tname:text\tsize:number\tdata:container\tcopy:container\n");
    EXPECT_TRUE(Contains(Corvane("show m.corvane --json").output, R"({"name":"size","type":"number"})"));

    run = Corvane("import m.corvane media data --as file in/c.gif in/b.txt --by-reference");
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(Contains(Show("--where 'id = 4'"), "\n4\t\t\tsize:0,0 file:in/c.gif filewin:/C:/"));
}

TEST_F(Fields, ReportsFilesThatCantBeImportedAndTakesTheOthers) {
    Write("in/bad.gif", "GIF89a");
    const Finished run = Corvane("import m.corvane media data in/bad.gif in/b.txt");
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(Contains(run.errors, "in/bad.gif: data: Media_InsertImage: -"));
    EXPECT_TRUE(Contains(Show(), "1\t\t\tFILE 2, "));
    EXPECT_EQ(Corvane("import m.corvane media data nothing").status, 2);
}

TEST_F(Fields, ExportsWhatWasImported) {
    Import();
    Finished run = Corvane("export m.corvane media data --to out/deep --name name");
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(Read("out/deep/b.txt"), "bb");
    EXPECT_EQ(Read("out/deep/a.bin"), std::string("\0\r\n\xFF", 4));
    EXPECT_EQ(Read("out/deep/c.gif"), Read("in/c.gif"));

    run = Corvane("export m.corvane media data --to out/deep --name name --where 'id = 1'");
    EXPECT_EQ(run.status, 1) << "nothing is overwritten";
    EXPECT_TRUE(Contains(run.errors, "record 1: name: 20200: "));
    EXPECT_EQ(Corvane("export m.corvane media data --to out/deep --name name --replace").status, 0);

    run = Corvane(R"(export m.corvane media data --to out --name '"../" & name')");
    EXPECT_EQ(run.status, 1) << "no name leads out of the folder";
    EXPECT_FALSE(std::filesystem::exists(folder_ + "/b.txt"));
    for (const char* name :
         {R"("same")", R"(Char(64 + id) & "¶two")"}) { // the same for two records; cut at the line's end
        run = Corvane("export m.corvane media data --to one --replace --name '" + std::string(name) + "'");
        EXPECT_EQ(run.status, 1) << name;
    }
    EXPECT_EQ(Read("one/same"), "bb") << "the first record's file stays";
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_ + "/one"), {}), 2) << "and same.gif";
    run = Corvane(R"(export m.corvane media data --to two --replace --name 'If(id = 2; "c"; "C.gif")')"
                  " --where 'id > 1'");
    EXPECT_TRUE(Contains(run.errors, "record 3: name: 20200: ")) << "also when its extension was added later";
    EXPECT_EQ(Read("two/c.gif"), Read("in/c.gif"));
    Write("three/1/mine", "a folder is no file 1.gif");
    Write("three/1.GIF", "mine");
    run = Corvane("export m.corvane media data --to three --replace --name '\"1\"' --where 'id = 2'");
    EXPECT_EQ(run.status, 0) << run.errors;
    Write("three/1.GIF", "mine");
    EXPECT_EQ(Corvane("export m.corvane media data --to three --replace --name '\"1.gif\"' --where 'id = 2'")
                  .status,
              0);
    EXPECT_EQ(Corvane("export m.corvane media data --to /nowhere --drive C:=$DIR").status, 2);
    EXPECT_FALSE(std::filesystem::exists("/nowhere"));
    run = Corvane("export m.corvane media data --to " + std::string(300, 'n'));
    EXPECT_EQ(run.status, 2) << run.errors;
    EXPECT_TRUE(Contains(run.errors, "cannot make the folder"));
    EXPECT_EQ(Corvane("export m.corvane media copy --to empty").status, 0);
    EXPECT_TRUE(std::filesystem::is_empty(folder_ + "/empty"));
}

TEST_F(Fields, AFileThatThereIsNoRoomForLeavesTheOldOne) {
    Write("in/large.bin", std::string(300'000, 'n'));
    Write("out/large.bin", "old");
    ASSERT_EQ(Corvane("import m.corvane media data in/large.bin").status, 0);
    const std::string limits[] = {"trap '' XFSZ; ulimit -f 200;", ""};
    for (const std::string& limit : limits) {
        const Finished run =
            Corvane(R"(export m.corvane media data --to out --name '"large.bin"' --replace)", {}, limit);
        EXPECT_EQ(run.status, limit.empty() ? 0 : 1) << run.errors;
        EXPECT_EQ(Read("out/large.bin"), limit.empty() ? Read("in/large.bin") : "old");
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_ + "/out"), {}), 1);
    }
}

TEST_F(Fields, UpdatesRecordsInOrderAndKeepsWhatFails) {
    Import();
    Finished run =
        Corvane(R"(update m.corvane media 'size = Media_ExtractInfo(Media_GetImageInfo(data); "Width")' )"
                R"('name=name & "/" & media::size' 'copy=data' --where 'id > 1')");
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.errors.starts_with("record 3: size: Media_ExtractInfo: -")) << run.errors;
    EXPECT_TRUE(Contains(run.errors, "records that failed: 1"));
    const std::string all = Show();
    EXPECT_TRUE(Contains(all, "\n1\tb.txt\t\t"));
    EXPECT_TRUE(Contains(all, "\n2\tc.gif/2\t2\tGIFf 35, SIZE 4, JPEG "));
    EXPECT_TRUE(Contains(all, "\n3\ta.bin\t\t"));

    run = Corvane("update m.corvane media 'copy=Media_ConvertImage(data; \"BMPf\")' --where 'id = 2'");
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_TRUE(Contains(Show("--where 'id = 2'"), "\tBMPf "));
    run = Corvane("update m.corvane media 'size=1 / 0' --where 'id = 2'");
    EXPECT_TRUE(Contains(run.errors, "record 2: size: 1200: ")) << "no number is lost to a question mark";
    EXPECT_EQ(Corvane("update m.corvane media 'name=$x & Length(Let($x = 5; $x))'").status, 0);
    EXPECT_TRUE(Contains(Show("--where 'id = 3'"), "\n3\t1\t")) << "variables begin empty for each record";
    run = Corvane("update m.corvane media 'name=\"$-2147450878:Conversion failed\"' --where 'id = 3'");
    EXPECT_TRUE(Contains(run.errors, "record 3: name: -2147450878: Conversion failed")) << run.errors;
    run = Corvane(R"(update m.corvane media 'name="$-5:" & Char(27) & "[2J" & Char(13) & "é" & Char(155)')");
    EXPECT_TRUE(Contains(run.errors, "name: -5: \uFFFD[2J\né\uFFFD\n"))
        << "nothing that a terminal would obey";
}

TEST_F(Fields, ASoundFunctionThatFailsInSilenceKeepsTheOldSound) {
    Import();
    const Finished run = Corvane("update m.corvane media 'data=Media_Amplify(data; 2)' --where 'id = 1'");
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.errors.starts_with("record 1: data: Media_Amplify: -")) << run.errors;
    EXPECT_TRUE(Contains(Show(), "1\tb.txt\t\tFILE 2, "));
}

TEST_F(Fields, ReferencesFollowTheDatabase) {
    std::string wave =
        "RIFF\x2C\1\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x44\xAC\0\0\x88\x58\1\0\2\0\x10\0data\x08\1\0\0"s;
    Write("in/tone.wav", wave + std::string(264, '\0'));
    ASSERT_EQ(Corvane("import m.corvane media data in/tone.wav --by-reference").status, 0);
    Shell("mkdir moved && mv in m.corvane moved");
    const Finished run =
        Corvane("update moved/m.corvane media 'name=Get(FilePath) & Media_GetSoundInfo(data)'");
    EXPECT_EQ(run.status, 0) << run.errors;
    const std::string shown = Corvane("show moved/m.corvane media").output;
    EXPECT_TRUE(Contains(shown, "/moved/m.corvane"));
    EXPECT_TRUE(Contains(shown, "44100"));
}

TEST_F(Fields, RefusesWrongUse) {
    ExpectRefusals({{"db", "usage"},
                    {"db create m.corvane", "exists"},
                    {"db table m.corvane media a:text", "there is a table"},
                    {"db table m.corvane other a:b", "is no field"},
                    {"show", "needs a database file"},
                    {"show nothing.corvane", "unable to open"},
                    {"show m.corvane other", "has no table"},
                    {"show m.corvane media --where '1 +'", "1:4: expected a value"},
                    {"show m.corvane media --jobs 2", "show does not take --jobs"},
                    {"eval 1 --where 1", "eval does not take --where"},
                    {"update m.corvane media", "update needs"},
                    {"update m.corvane media nothing=1", "has no field"},
                    {"update m.corvane media id=1", "has no field"},
                    {"update m.corvane media size", "is not FIELD=CALCULATION"},
                    {"update m.corvane media size=1+", "1:3: expected a value"},
                    {"update m.corvane media size=1 --jobs 0", "--jobs takes"},
                    {"import m.corvane media name in", "has no container field"},
                    {"import m.corvane media data in --as x", "--as takes"},
                    {"import m.corvane media data in --name-field size", "has no text field"},
                    {"update m.corvane media size=", "is not FIELD=CALCULATION"},
                    {"update m.corvane media size=1 --where ''", "--where takes a calculation"},
                    {"export m.corvane media data", "--to FOLDER"}});
}

TEST_F(Fields, WorkersAnswerEveryLine) {
    EXPECT_EQ(Corvane("worker", "1/4\n(\n\"é\"").output,
              R"({"calc":"1/4","error":0,"type":"number","value":"0.25"}
{"calc":"(","error":1200,"message":"expected a value","type":"text","value":""}
{"calc":"\"é\"","error":0,"type":"text","value":"é"}
)");
    Import();
    const std::string answer = Corvane("worker m.corvane media name=id copy=data", "1\n").output;
    EXPECT_EQ(
        answer.find(R"({"record":1,"chosen":true,"changes":[{"field":"name","text":"1"},{"field":"copy",)"),
        0U)
        << answer;
    EXPECT_TRUE(Contains(answer, "}\nbb"));
    EXPECT_EQ(Corvane("worker m.corvane media name=id", "one\n").status, 2);
    EXPECT_EQ(Corvane("worker m.corvane media 'name=1 +'", "1\n").status, 2);
}

} // namespace
} // namespace host
