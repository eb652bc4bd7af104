// The built program as a person meets it: arguments in, standard output, standard error and status out.
#pragma once

#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <initializer_list>
#include <string>
#include <sys/wait.h>
#include <utility>

namespace host {

struct Finished {
    int status = -1;
    std::string output;
    std::string errors;
};

/// For EXPECT_TRUE: whether the text has this part.
inline testing::AssertionResult Contains(const std::string& text, const std::string& part) {
    return testing::IsSubstring("the part", "the text", part, text);
}

class Program : public testing::Test {
protected:
    // `arguments` as a shell reads them; $PLUGIN is the test's plug-in, $DIR a scratch folder.
    [[nodiscard]] Finished Corvane(const std::string& arguments, const std::string& input = {},
                                   const std::string& environment = {}) const {
        Write("stdin", input);
        const std::string command =
            "cd '" + folder_ + "'; PLUGIN='" CORVANE_TEST_PLUGIN "'; DIR='" + folder_ + "'; " + environment +
            " '" CORVANE_PROGRAM "' --ui none --plugin $PLUGIN " + arguments + " <stdin >stdout 2>stderr";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Read("stdout"), Read("stderr")};
    }

    // Each command ends with status 2 and this in its errors.
    void ExpectRefusals(std::initializer_list<std::pair<const char*, const char*>> commands) const {
        for (const auto& [arguments, complaint] : commands) {
            const Finished run = Corvane(arguments);
            EXPECT_EQ(run.status, 2) << arguments;
            EXPECT_EQ(run.output, "") << arguments;
            EXPECT_TRUE(Contains(run.errors, complaint)) << arguments;
        }
    }

    // Another command in the scratch folder.
    void Shell(const std::string& command) const {
        const std::string all = "cd '" + folder_ + "' && { " + command + "; } >/dev/null 2>shell-errors";
        EXPECT_EQ(std::system(all.c_str()), 0) << command << '\n' << Read("shell-errors");
    }

    // What SQLite's own shell tells about the database file m.corvane.
    std::string Sql(const std::string& statements) const {
        Shell("sqlite3 -cmd '.timeout 60000' m.corvane \"" + statements + "\" >sql");
        std::string text = Read("sql");
        if (text.ends_with('\n')) text.pop_back();
        return text;
    }

    // A file of the scratch folder.
    [[nodiscard]] std::string Read(const std::string& name) const {
        return corvane::test::ReadBytes(folder_ + '/' + name);
    }
    void Write(const std::string& name, const std::string& bytes) const {
        corvane::test::WriteBytes(folder_ + '/' + name, bytes);
    }

    corvane::test::ScratchFolder scratch_;
    std::string folder_ = scratch_.Path();
};

} // namespace host
