#include "tests/ui/virtual_display.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace corvane::test {
namespace {

pid_t Start(const std::string& shell_commands) {
    std::string shell = "/bin/sh";
    std::string option = "-c";
    std::string commands = shell_commands;
    const std::array<char*, 4> arguments = {shell.data(), option.data(), commands.data(), nullptr};
    pid_t process = 0;
    if (posix_spawn(&process, shell.c_str(), nullptr, nullptr, arguments.data(), environ) != 0)
        throw std::runtime_error("no shell");
    return process;
}

} // namespace

VirtualDisplay::VirtualDisplay() {
    std::array<int, 2> number{};
    if (pipe(number.data()) != 0) throw std::runtime_error("no pipe");
    const std::string descriptor = std::to_string(number[1]);
    process_ =
        Start("exec Xvfb -displayfd " + descriptor + " -screen 0 1280x960x24 -nolisten tcp >/dev/null 2>&1");
    close(number[1]);
    std::FILE* answer = fdopen(number[0], "r");
    int display = -1;
    const bool started = std::fscanf(answer, "%d", &display) == 1;
    std::fclose(answer);
    if (!started) throw std::runtime_error("Xvfb does not start");
    setenv("DISPLAY", (":" + std::to_string(display)).c_str(), 1);
}

VirtualDisplay::~VirtualDisplay() {
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
}

Person::Person(const std::string& title, const std::string& commands) : title_(title) {
    // Pictures of the windows for the documentation.
    const std::string picture = "if [ -n \"$CORVANE_SCREENSHOTS\" ]; then sleep 1; "
                                "import -window $WINDOW \"$CORVANE_SCREENSHOTS/" +
                                title + ".png\"; fi; ";
    process_ = Start("tries=0; until WINDOW=$(xdotool search --onlyvisible --name '^" + title +
                     "$' 2>/dev/null | grep .); do tries=$((tries + 1)); [ $tries -lt 600 ] || exit 9; "
                     "sleep 0.1; done; xdotool windowfocus --sync $WINDOW; " +
                     picture + commands);
}

Person::~Person() {
    int status = 0;
    waitpid(process_, &status, 0);
    EXPECT_EQ(status, 0) << "nobody could work with the window " << title_;
}

} // namespace corvane::test
