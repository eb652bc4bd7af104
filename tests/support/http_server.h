// Runs http_server.py for the time of a test.
#pragma once

#include <array>
#include <cstdio>
#include <stdexcept>
#include <string>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace corvane::test {

class HttpServer {
public:
    /// Serves the files of `folder` beside its own pages.
    explicit HttpServer(std::string folder = "/nowhere") {
        std::array<int, 2> input{};
        std::array<int, 2> output{};
        if (pipe(input.data()) != 0 || pipe(output.data()) != 0) throw std::runtime_error("no pipe");
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, input[0], 0);
        posix_spawn_file_actions_adddup2(&actions, output[1], 1);
        posix_spawn_file_actions_addclose(&actions, input[1]); // else it never sees the end of its input
        std::string program = "/usr/bin/python3";
        std::string script = HTTP_SERVER_SCRIPT;
        const std::array<char*, 4> arguments = {program.data(), script.data(), folder.data(), nullptr};
        const int error =
            posix_spawn(&process_, program.c_str(), &actions, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        close(input[0]);
        close(output[1]);
        input_ = input[1];
        std::FILE* port = fdopen(output[0], "r");
        const bool started = error == 0 && std::fscanf(port, "%d", &port_) == 1;
        std::fclose(port);
        if (!started) throw std::runtime_error("the test server does not start");
    }
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;
    ~HttpServer() {
        close(input_);
        waitpid(process_, nullptr, 0);
    }

    [[nodiscard]] std::string Url(const std::string& page) const {
        return "http://127.0.0.1:" + std::to_string(port_) + "/" + page;
    }

private:
    pid_t process_ = 0;
    int input_ = -1;
    int port_ = 0;
};

} // namespace corvane::test
