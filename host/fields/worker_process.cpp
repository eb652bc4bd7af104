#include "host/fields/worker_process.h"

#include <algorithm>
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
    buffer_.clear();
    begin_ = 0;
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

bool WorkerProcess::HasLine() const {
    return buffer_.find('\n', begin_) != std::string::npos;
}

bool WorkerProcess::Fill() {
    constexpr std::size_t kPiece = std::size_t{64} << 10;
    buffer_.erase(0, begin_);
    begin_ = 0;
    const std::size_t size = buffer_.size();
    buffer_.resize(size + kPiece);
    ssize_t count = 0;
    do {
        count = ::read(descriptor_, buffer_.data() + size, kPiece);
    } while (count < 0 && errno == EINTR);
    buffer_.resize(size + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return count > 0;
}

std::optional<std::string_view> WorkerProcess::ReadLine() {
    while (!HasLine())
        if (!Fill()) return std::nullopt;
    const std::size_t end = buffer_.find('\n', begin_);
    const std::string_view line = std::string_view(buffer_).substr(begin_, end - begin_);
    begin_ = end + 1;
    return line;
}

bool WorkerProcess::Read(std::uint8_t* buffer, std::size_t size) {
    const std::size_t at_hand = std::min(size, buffer_.size() - begin_);
    std::copy_n(buffer_.data() + begin_, at_hand, buffer);
    begin_ += at_hand;
    for (std::size_t done = at_hand; done < size;) {
        const ssize_t count = ::read(descriptor_, buffer + done, size - done);
        if (count == 0 || (count < 0 && errno != EINTR)) return false;
        if (count > 0) done += static_cast<std::size_t>(count);
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
