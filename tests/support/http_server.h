// Runs http_server.py for the time of a test.
#pragma once

#include <array>
#include <cstdio>
#include <stdexcept>
#include <string>

#include <unistd.h>

namespace corvane::test {

class HttpServer {
public:
    /// Serves the files of `folder` beside its own pages.
    explicit HttpServer(const std::string& folder = "/nowhere") {
        std::array<int, 2> output{};
        if (pipe(output.data()) != 0) throw std::runtime_error("no pipe");
        const std::string command = "exec /usr/bin/python3 '" HTTP_SERVER_SCRIPT "' '" + folder +
                                    "' >/dev/fd/" + std::to_string(output[1]);
        input_ = popen(command.c_str(), "we");
        close(output[1]);
        std::FILE* port = fdopen(output[0], "r");
        const bool started = input_ != nullptr && std::fscanf(port, "%d", &port_) == 1;
        std::fclose(port);
        if (!started) throw std::runtime_error("the test server does not start");
    }
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;
    ~HttpServer() { pclose(input_); }

    [[nodiscard]] std::string Url(const std::string& page) const {
        return "http://127.0.0.1:" + std::to_string(port_) + "/" + page;
    }

private:
    std::FILE* input_ = nullptr; ///< the server ends with it
    int port_ = 0;
};

} // namespace corvane::test
