#include "tests/host/program.h"

#include <algorithm>

namespace host {
namespace {

TEST_F(Program, PrintsPlainResults) {
    const Finished run = Corvane(R"x(eval '"a" & ¶ & "b"' '1/4' '""' HostContainer 'HostReference("r¶s")')x");
    EXPECT_EQ(run.output, "a\nb\n0.25\n\ncontainer\ncontainer\nr\ns\n");
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(Corvane(R"(eval --raw '"a¶é"' '"b"')").output, "a\réb") << "nothing added";
}

TEST_F(Program, ListsStreamsAndSavesThem) {
    Write("abc", "abc");
    const std::string container = R"x('HostContainer("snd ";"abc";"a/b"&Char(7);"abc")')x";
    Finished run = Corvane("eval 1 " + container + " --save-streams new/deep");
    EXPECT_EQ(run.output, "1\ncontainer\n  snd  3 bytes\n  a/b\a 3 bytes\n");
    EXPECT_EQ(Read("new/deep/2-0-snd_"), "abc");
    EXPECT_EQ(Read("new/deep/2-1-a_b_"), "abc");
    run = Corvane("eval --json " + container);
    EXPECT_TRUE(Contains(run.output,
                         R"("streams":[{"type":"snd ","size":3,"sha256":)"
                         R"("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},{)"));
    run = Corvane("eval --save-streams abc/x " + container);
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(Contains(run.errors, "abc/x"));
}

TEST_F(Program, WritesJsonWithKeysInOrder) {
    const Finished run = Corvane(R"x(eval --json '"\"¶"' 3/4 'HostReference("r")' )x"
                                 R"x('Test_Answer(-1) & Test_Answer(-2; "b") & Test_Answer(0; "c")')x");
    EXPECT_EQ(run.output, R"x({"calc":"\"\\\"¶\"","error":0,"type":"text","value":"\"\r"}
{"calc":"3/4","error":0,"type":"number","value":"0.75"}
{"calc":"HostReference(\"r\")","error":0,"type":"container","value":"r","streams":[]}
{"calc":"Test_Answer(-1) & Test_Answer(-2; \"b\") & Test_Answer(0; \"c\")","error":-1,"type":"text","value":"bc"}
)x");
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(Corvane("eval --json \"$(printf '\"\\377\"')\"").output,
              "{\"calc\":\"\\\"\uFFFD\\\"\",\"error\":0,\"type\":\"text\",\"value\":\"\uFFFD\"}\n");
}

TEST_F(Program, ShowsCodesOfHandlers) {
    const Finished run = Corvane("eval 'Test_Answer(-50; \"left\")' 1");
    EXPECT_EQ(run.output, "?\n1\n");
    EXPECT_EQ(run.errors, "error -50\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(Corvane("eval 1 'Test_Answer(-50)' 1 --strict").status, 1);
    EXPECT_EQ(Corvane("eval --strict '\"$-43:none\"'").status, 1);
    EXPECT_EQ(Corvane("eval --strict '\"$0:Cancel\"'").status, 0);
}

TEST_F(Program, ReadsLinesOfStandardInput) {
    const Finished run = Corvane("eval", "\uFEFF# comment\n\n  \nLet($a = 2; $a)\r\n$a + 1");
    EXPECT_EQ(run.output, "2\n3\n");
    EXPECT_EQ(Corvane("eval 5 - 7", "6\n").output, "5\n6\n7\n");
    EXPECT_EQ(Corvane("eval", "").output, "");

    std::string many;
    for (int i = 0; i < 50'000; ++i) many += std::to_string(i) + '\n';
    EXPECT_EQ(Corvane("eval", many).output, many);
}

TEST_F(Program, TellsThatAStandardStreamCantBeUsed) {
    for (const char* stream : {"</", "<&-"}) {
        Shell(R"(! ")" CORVANE_PROGRAM R"(" eval )" + std::string(stream) + " 2>complaint");
        EXPECT_TRUE(Contains(Read("complaint"), "corvane: cannot read the input: "));
    }
    // A file that is opened meanwhile must not take the place of the stream that is closed.
    Shell(
        R"(! SDL_AUDIODRIVER=dummy ")" CORVANE_PROGRAM R"(" eval --drive "C:=$PWD" '"AAAA"' )"
        R"('Media_RecordSoundStart ( "/C:/r.mov" ; True )' 'HostPump ( 0.3 )' '"BBBB"' 'Media_RecordSoundStop' >&-)");
    EXPECT_EQ(Read("r.mov").substr(4, 4), "ftyp");
}

TEST_F(Program, EndsAtALineThatIsTooLong) {
    // Its parts alone would be calculations.
    const std::string input = "1\n2" + std::string(70 << 20, ' ') + "\n3\n";
    for (const char* command : {"eval -", "worker"}) {
        const Finished run = Corvane(command, input);
        EXPECT_EQ(run.status, 2) << command;
        EXPECT_EQ(run.errors, "corvane: line 2 is longer than 64 MiB\n") << command;
        EXPECT_EQ(std::ranges::count(run.output, '\n'), 1) << command;
    }
}

TEST_F(Program, StopsAtACalculationThatDoesNotParse) {
    Finished run = Corvane("eval '1' '(2 ≠' 3");
    EXPECT_EQ(run.output, "1\n");
    EXPECT_EQ(run.errors, "corvane: 1:5: expected a value\n(2 ≠\n    ^\n");
    EXPECT_EQ(run.status, 2);
    run = Corvane("eval --json", "1\n\n2 +\n3\n");
    EXPECT_EQ(run.errors.substr(0, 13), "corvane: 3:4:");
    EXPECT_EQ(run.status, 2);
}

TEST_F(Program, TakesOptionsAnywhere) {
    EXPECT_EQ(Corvane("--host-version 9.0v1 eval 'Get(ApplicationVersion)' -- '-1'").output,
              "Pro 9.0v1\n-1\n");
    struct Case {
        const char* drives;
        const char* options;
        const char* path;
    };
    for (const Case& c :
         {Case{"C:=/", "--database=fmnet:/h/M", "fmnet:/h/M"},
          {"C:=/", "--database file:/X:/a.fp7", "file:/X:/a.fp7"},
          {"C:=/;D:=/nowhere", "--database $DIR/db/../M.fp7 --drive D:=$DIR", "file:/D:/M.fp7"},
          {R"(\\\\a\b=$DIR)", "--database M.fp7", "file://a/b/M.fp7"},
          {"D:=$DIR", "--database c:/M.fp7", "file:/D:/c:/M.fp7"},
          {"X:=/nowhere", "", "file:/X:/Untitled.fp7"}}) {
        const Finished run = Corvane(std::string("eval 'Get(FilePath)' ") + c.options, "",
                                     std::string("CORVANE_DRIVES=\"") + c.drives + '"');
        EXPECT_EQ(run.output, std::string(c.path) + '\n') << c.options << run.errors;
    }
}

TEST_F(Program, RefusesWrongUse) {
    ExpectRefusals({
        {"", "a command is missing"},
        {"unknown", "unknown command \"unknown\""},
        {"about more", "about does not take \"more\""},
        {"eval --nothing 1", "corvane: unrecognized option '--nothing'"},
        {"eval --ui x 1", "--ui takes"},
        {"eval --answer OK 1", "--answer takes"},
        {"eval --hidden x 1", "--hidden takes"},
        {"eval --progress x 1", "--progress takes"},
        {"eval --interface-version 5x 1", "--interface-version takes"},
        {"eval --interface-version 99999 1", "--interface-version takes"},
        {"eval --drive C 1", "is no drive"},
        {"eval --drive C:=/nowhere --database /etc/x 1", "outside every drive"},
        {"eval --interface-version 49 1", "answer -1"},
        {"eval --host-version refused 1", "answer -2"},
        {"eval --plugin /nowhere.so 1", "cannot load the plug-in"},
        {"eval --plugin '" CORVANE_FMWRAPPER "' 1", "no entry point FMExternCallProc"},
        {"help Nothing", "there is no function \"Nothing\""},
    });
    EXPECT_EQ(Corvane("eval 1", "", "CORVANE_DRIVES=x").status, 2);
    EXPECT_EQ(Corvane("--help").status, 0);
    EXPECT_EQ(Corvane("--version").output, "corvane 10.0.3\n");
    EXPECT_EQ(Corvane("eval 1 >/dev/full 2>stderr #").status, 2) << "lost output is no success";
}

TEST_F(Program, ListsWhatThePluginRegistered) {
    const Finished plain = Corvane("functions");
    EXPECT_EQ(plain.output.substr(0, plain.output.find('\n')),
              "1\tTest_Echo\tTest_Echo( value )\t1\t1\t0xFF01");
    const std::string json = Corvane("functions --json").output;
    EXPECT_EQ(json.substr(0, json.find(',')), "[\n{\"id\":1");
    EXPECT_TRUE(
        Contains(json, "},\n"
                       R"({"id":5,"name":"TEST_ECHO","prototype":"Test_Echo","min":0,"max":0,"flags":65281})"
                       ",\n"));
    EXPECT_EQ(json.substr(json.size() - 4), "}\n]\n");
}

TEST_F(Program, TellsAboutThePlugin) {
    EXPECT_EQ(Corvane("about --json").output,
              R"({"name":"Tést","description":"-","options":"-","answer":51,"version":""})"
              "\n");
    EXPECT_TRUE(Contains(Corvane("about").output, "answer       51\n"));
}

TEST_F(Program, HelpFollowsTheRegistrations) {
    const std::string all = Corvane("help").output;
    EXPECT_TRUE(Contains(all, "Other functions of the plug-in\n  Test_Echo( value )\n  Test_Answer"));
    EXPECT_EQ(all.find("Media_"), std::string::npos) << "this plug-in has none of them";
    EXPECT_TRUE(Contains(all, "  Position ( text ; search ; start ; occurrence )\n"));
    EXPECT_EQ(Corvane("help test_many").output, "Test_Many( a ; b {; c…} )\n\nParameters\n  2 or more\n");
    EXPECT_TRUE(Contains(Corvane("help hoststream").output, "lower case; empty when"));
    EXPECT_EQ(Corvane("help FilePath").output, "Get ( FilePath )\n\nParameters\n  0\n");
}

} // namespace
} // namespace host
