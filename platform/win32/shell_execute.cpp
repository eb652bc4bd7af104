#include "platform/win32/shell_execute.h"

#include "platform/text/utf.h"
#include "platform/win32/descriptor.h"
#include "platform/win32/errors.h"
#include "platform/win32/paths.h"
#include "platform/win32/shell_link.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <vector>

namespace {

constexpr std::intptr_t kOpened = 42; // any number above 32
constexpr int kTimeToFail = 2000;     // milliseconds
constexpr int kLongestChain = 16;     // of shortcuts to shortcuts
constexpr std::size_t kLargestLink = std::size_t{64} * 1024;

// Programs that were still at work when their call ended.
std::vector<pid_t> g_running;

void ForgetFinished() {
    std::erase_if(g_running, [](pid_t process) { return waitpid(process, nullptr, WNOHANG) != 0; });
}

bool IsShortcut(const std::string& path) {
    return utf::ToLower(path).ends_with(".lnk");
}

std::optional<win32::ShellLink> ReadShortcut(const std::string& path) {
    const win32::Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    std::string bytes(kLargestLink, '\0');
    const ssize_t size = file ? read(file.get(), bytes.data(), bytes.size()) : -1;
    if (size < 0) return std::nullopt;
    bytes.resize(static_cast<std::size_t>(size));
    return win32::DecodeShellLink(bytes);
}

// What a chain of shortcuts leads to in the end.
win32::UnixPath Follow(const std::u16string& native) {
    win32::UnixPath item = win32::ToUnixPath(native);
    for (int i = 0; item.error == ERROR_SUCCESS && S_ISREG(item.status.st_mode) && IsShortcut(item.path);
         ++i) {
        const auto link = i < kLongestChain ? ReadShortcut(item.path) : std::nullopt;
        if (!link) {
            item.error = SE_ERR_NOASSOC;
            break;
        }
        item = win32::ToUnixPath(link->target);
    }
    return item;
}

// Starts the program: its process, or 0.
pid_t Start(const char* program, const std::string& argument) {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    for (int stream = 0; stream <= 2; ++stream)
        posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    std::string name = program;
    std::string path = argument;
    char* const arguments[] = {name.data(), path.data(), nullptr};
    pid_t process = 0;
    if (posix_spawnp(&process, program, &actions, &attributes, arguments, environ) != 0) process = 0;
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return process;
}

// False when the program has failed.
bool HasOpened(pid_t process) {
    const win32::Descriptor descriptor(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
    pollfd end = {descriptor.get(), POLLIN, 0};
    int ready = 0;
    do ready = poll(&end, 1, kTimeToFail);
    while (ready < 0 && errno == EINTR);
    if (ready == 0) {
        g_running.push_back(process);
        return true;
    }
    int status = 0;
    // A host that lets the system reap its children leaves no status.
    return waitpid(process, &status, 0) != process || (WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

} // namespace

HINSTANCE ShellExecuteW(const WCHAR* file) {
    ForgetFinished();
    const win32::UnixPath item = Follow(file);
    const auto answer = [](std::intptr_t value) { return reinterpret_cast<HINSTANCE>(value); };
    // Numbers above 32 would say that it was opened.
    if (item.error != ERROR_SUCCESS) return answer(item.error <= 32 ? item.error : SE_ERR_NOASSOC);
    const char* program = std::getenv("CORVANE_OPENER");
    const pid_t process = Start(program != nullptr && *program != '\0' ? program : "xdg-open", item.path);
    return answer(process != 0 && HasOpened(process) ? kOpened : SE_ERR_NOASSOC);
}
