#include "host/fields/worker_process.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace host {
namespace {

// One socket is the standard input and output of the process.
int Spawn(const std::vector<std::string>& command, int socket, pid_t& process) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, socket, STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, socket, STDOUT_FILENO);
    ::posix_spawnattr_init(&attributes);
    ::posix_spawnattr_setpgroup(&attributes, 0);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    const int error =
        ::posix_spawn(&process, command.front().c_str(), &actions, &attributes, arguments.data(), environ);
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&actions);
    return error;
}

} // namespace

WorkerProcess::~WorkerProcess() {
    (void)End(true);
}

std::string WorkerProcess::Start(const std::vector<std::string>& command) {
    int sockets[2] = {-1, -1};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0)
        return std::string("cannot start a worker: ") + std::strerror(errno);
    const int error = Spawn(command, sockets[1], process_);
    ::close(sockets[1]);
    descriptor_ = sockets[0];
    lines_.emplace(descriptor_, LineReader::kNoLimit);
    if (error == 0) return {};
    process_ = 0;
    ::close(descriptor_);
    descriptor_ = -1;
    return std::string("cannot start a worker: ") + std::strerror(error);
}

bool WorkerProcess::Send(std::string_view bytes) const {
    while (!bytes.empty()) {
        const ssize_t count = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count < 0 && errno != EINTR) return false;
        if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

std::string WorkerProcess::End(bool kill) {
    if (!IsRunning()) return {};
    if (kill) ::kill(process_, SIGKILL);
    ::close(descriptor_);
    descriptor_ = -1;
    int status = 0;
    while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    process_ = 0;
    if (WIFSIGNALED(status)) return "signal " + std::to_string(WTERMSIG(status));
    return "exit status " + std::to_string(WEXITSTATUS(status));
}

} // namespace host
