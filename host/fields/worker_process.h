// A process that takes lines and answers with lines and bytes.
#pragma once

#include "host/line_reader.h"

#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace host {

class WorkerProcess {
public:
    WorkerProcess() = default;
    /// Ends the process at once if it still runs.
    ~WorkerProcess();
    WorkerProcess(const WorkerProcess&) = delete;
    WorkerProcess& operator=(const WorkerProcess&) = delete;

    /// Starts a program (its path, then its arguments) out of the reach of this terminal's Ctrl-C. The text
    /// says what failed; empty on success.
    [[nodiscard]] std::string Start(const std::vector<std::string>& command);
    [[nodiscard]] bool IsRunning() const { return process_ > 0; }

    /// False when the process is gone.
    bool Send(std::string_view bytes) const;
    /// What it answers, up to its end. Only once it has been started.
    [[nodiscard]] LineReader& Lines() { return *lines_; }
    /// To wait on for more.
    [[nodiscard]] int Descriptor() const { return descriptor_; }

    /// Ends the process, at once with `kill`, else when it has ended by itself, and says how it ended.
    std::string End(bool kill);

private:
    pid_t process_ = 0;
    int descriptor_ = -1;
    std::optional<LineReader> lines_;
};

} // namespace host
