// The built program as a person meets it: arguments in, standard output, standard error and status out.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/wait.h>

namespace host {

struct Finished {
    int status = -1;
    std::string output;
    std::string errors;
};

inline std::string Contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

class Program : public testing::Test {
protected:
    void SetUp() override {
        std::string folder = testing::TempDir() + "corvane-program-XXXXXX";
        ASSERT_NE(mkdtemp(folder.data()), nullptr);
        folder_ = folder;
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    // `arguments` as a shell reads them; $PLUGIN is the test's plug-in, $DIR a scratch folder.
    [[nodiscard]] Finished Corvane(const std::string& arguments, const std::string& input = {},
                                   const std::string& environment = {}) const {
        const std::string input_file = folder_ + "/stdin";
        std::ofstream(input_file, std::ios::binary) << input;
        const std::string command =
            "cd '" + folder_ + "'; PLUGIN='" CORVANE_TEST_PLUGIN "'; DIR='" + folder_ + "'; " + environment +
            " '" CORVANE_PROGRAM "' --ui none --plugin $PLUGIN " + arguments + " <stdin >stdout 2>stderr";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Contents(folder_ + "/stdout"),
                Contents(folder_ + "/stderr")};
    }

    std::string folder_;
};

} // namespace host
