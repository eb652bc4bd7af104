#include "tests/host/program.h"

#include <vector>

namespace host {
namespace {

TEST_F(Program, PrintsPlainResults) {
    const Finished run = Corvane(R"x(eval '"a" & ¶ & "b"' '1/4' '""' HostContainer 'HostReference("r¶s")')x");
    EXPECT_EQ(run.output, "a\nb\n0.25\n\ncontainer\ncontainer\nr\ns\n");
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.status, 0);
}

TEST_F(Program, ListsStreamsAndSavesThem) {
    std::ofstream(folder_ + "/abc") << "abc";
    const std::string container = R"x('HostContainer("snd ";"abc";"a/b"&Char(7);"abc")')x";
    Finished run = Corvane("eval 1 " + container + " --save-streams new/deep");
    EXPECT_EQ(run.output, "1\ncontainer\n  snd  3 bytes\n  a/b\a 3 bytes\n");
    EXPECT_EQ(Contents(folder_ + "/new/deep/2-0-snd_"), "abc");
    EXPECT_EQ(Contents(folder_ + "/new/deep/2-1-a_b_"), "abc");
    run = Corvane("eval --json " + container);
    EXPECT_NE(run.output.find(R"("streams":[{"type":"snd ","size":3,"sha256":)"
                              R"("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},{)"),
              std::string::npos)
        << run.output;
    run = Corvane("eval --save-streams abc/x " + container);
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.errors.find("abc/x"), std::string::npos);
}

TEST_F(Program, RawTextHasNothingAdded) {
    EXPECT_EQ(Corvane(R"(eval --raw '"a¶é"' '"b"')").output, "a\ré"
                                                             "b");
}

TEST_F(Program, WritesJsonWithKeysInOrder) {
    const Finished run =
        Corvane(R"x(eval --json '"\"¶"' 3/4 'HostReference("r")' 'Test_Answer(-50; "left")')x");
    EXPECT_EQ(run.output, R"x({"calc":"\"\\\"¶\"","error":0,"type":"text","value":"\"\r"}
{"calc":"3/4","error":0,"type":"number","value":"0.75"}
{"calc":"HostReference(\"r\")","error":0,"type":"container","value":"r","streams":[]}
{"calc":"Test_Answer(-50; \"left\")","error":-50,"type":"text","value":"left"}
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
    const Finished run = Corvane("eval", "# comment\n\n  \nLet($a = 2; $a)\r\n$a + 1");
    EXPECT_EQ(run.output, "2\n3\n");
    EXPECT_EQ(Corvane("eval 5 - 7", "6\n").output, "5\n6\n7\n");
    EXPECT_EQ(Corvane("eval", "").output, "");

    std::string many;
    for (int i = 0; i < 50'000; ++i) many += std::to_string(i) + '\n';
    EXPECT_EQ(Corvane("eval", many).output, many);
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
    EXPECT_EQ(
        Corvane("--host-version 9.0v1 eval 'Get(ApplicationVersion)' --database=fmnet:/h/M 'Get(FilePath)'")
            .output,
        "Pro 9.0v1\nfmnet:/h/M\n");
    EXPECT_EQ(Corvane("eval --database $DIR/d/M.fp7 --drive D:=$DIR 'Get(FilePath)' -- '-1'", "",
                      "CORVANE_DRIVES='C:=/;D:=/nowhere'")
                  .output,
              "file:/D:/d/M.fp7\n-1\n");
    EXPECT_EQ(Corvane("eval --database M.fp7 'Get(FilePath)'", "", R"(CORVANE_DRIVES='\\a\b='"$DIR")").output,
              "file://a/b/M.fp7\n");
}

TEST_F(Program, RefusesWrongUse) {
    struct Case {
        const char* arguments;
        const char* complaint;
    };
    for (const Case& c : std::vector<Case>{
             {"", "a command is missing"},
             {"unknown", "unknown command \"unknown\""},
             {"about more", "about does not take \"more\""},
             {"eval --nothing 1", "--nothing"},
             {"eval --ui x 1", "--ui takes"},
             {"eval --hidden x 1", "--hidden takes"},
             {"eval --progress x 1", "--progress takes"},
             {"eval --interface-version 5x 1", "--interface-version takes"},
             {"eval --interface-version 99999 1", "--interface-version takes"},
             {"eval --drive C 1", "is no drive"},
             {"eval --drive C:=/nowhere --database /etc/x 1", "outside every drive"},
             {"eval --interface-version 49 1", "answer -1"},
             {"eval --host-version refused 1", "answer -2"},
             {"eval --plugin /nowhere.so 1", "cannot load the plug-in"},
             {"help Nothing", "there is no function \"Nothing\""},
         }) {
        const Finished run = Corvane(c.arguments);
        EXPECT_EQ(run.status, 2) << c.arguments;
        EXPECT_EQ(run.output, "") << c.arguments;
        EXPECT_NE(run.errors.find(c.complaint), std::string::npos) << c.arguments << ": " << run.errors;
    }
    const Finished environment = Corvane("eval 1", "", "CORVANE_DRIVES=x");
    EXPECT_EQ(environment.status, 2);
    EXPECT_EQ(Corvane("--help").status, 0);
    EXPECT_EQ(Corvane("eval 1 >/dev/full 2>stderr #").status, 2) << "lost output is no success";
}

TEST_F(Program, ListsWhatThePluginRegistered) {
    const Finished plain = Corvane("functions");
    EXPECT_EQ(plain.output.substr(0, plain.output.find('\n')),
              "1\tTest_Echo\tTest_Echo( value )\t1\t1\t0xFF01");
    const std::string json = Corvane("functions --json").output;
    EXPECT_EQ(json.substr(0, json.find(',')), "[\n{\"id\":1");
    EXPECT_NE(json.find("},\n"
                        R"({"id":5,"name":"TEST_ECHO","prototype":"Test_Echo","min":0,"max":0,"flags":65281})"
                        ",\n"),
              std::string::npos)
        << json;
    EXPECT_EQ(json.substr(json.size() - 4), "}\n]\n");
}

TEST_F(Program, TellsAboutThePlugin) {
    EXPECT_EQ(Corvane("about --json").output,
              R"({"name":"Tést","description":"-","options":"-","answer":51,"version":""})"
              "\n");
    EXPECT_NE(Corvane("about").output.find("answer       51\n"), std::string::npos);
}

TEST_F(Program, HelpFollowsTheRegistrations) {
    const std::string all = Corvane("help").output;
    EXPECT_NE(all.find("Other functions of the plug-in\n  Test_Echo( value )\n  Test_Answer"),
              std::string::npos);
    EXPECT_EQ(all.find("Media_"), std::string::npos) << "this plug-in has none of them";
    EXPECT_NE(all.find("  Position ( text ; search ; start ; occurrence )\n"), std::string::npos);
    EXPECT_EQ(Corvane("help test_many").output, "Test_Many( a ; b {; c…} )\n\nParameters\n  2 or more\n");
    EXPECT_NE(Corvane("help hoststream").output.find("lower case; empty when"), std::string::npos);
    EXPECT_EQ(Corvane("help FilePath").output, "Get ( FilePath )\n\nParameters\n  0\n");
}

} // namespace
} // namespace host
