// The program's options and commands as the person gave them.
#pragma once

#include "host/commands/table_options.h"
#include "host/session.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

struct CommandLine {
    std::string command;
    std::vector<std::string> arguments;
    SessionOptions session;
    bool json = false;
    bool raw = false;
    bool strict = false;
    std::string save_streams; ///< folder (Unix path); empty: no streams are saved
    TableOptions table;
};

/// Options may stand before, between and after the other words, up to "--". On a usage error it prints the
/// message, on --help the usage, on --version the version, and answers nullopt with the exit status in
/// `status`.
std::optional<CommandLine> ReadCommandLine(int argc, char** argv, int& status);

inline constexpr int kUsageError = 2;

} // namespace host
