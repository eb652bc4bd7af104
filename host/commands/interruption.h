// A person's Ctrl-C, a scheduler's SIGTERM or a hangup, as a wish that long work looks for between its steps.
#pragma once

namespace host {

/// While one lives the first signal is noted; the second one ends the process as usual.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    [[nodiscard]] static bool IsWished();
    /// As a shell expects it of a process that a signal ended.
    [[nodiscard]] static int ExitStatus();
};

} // namespace host
