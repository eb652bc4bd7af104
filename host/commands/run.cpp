#include "host/commands/commands.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace host {
namespace {

struct Command {
    std::string_view name;
    int (*run)(Session& session, const CommandLine& line);
    std::size_t most_arguments;
};

constexpr auto kCommands = std::to_array<Command>({
    {"eval", Eval, SIZE_MAX},
    {"functions", ListFunctions, 0},
    {"about", About, 0},
    {"help", Help, 1},
});

} // namespace

int RunCommand(const CommandLine& line) {
    const auto command = std::ranges::find(kCommands, line.command, &Command::name);
    if (command == kCommands.end()) {
        std::fprintf(stderr, "corvane: unknown command \"%s\"; see corvane --help\n", line.command.c_str());
        return kUsageError;
    }
    if (line.arguments.size() > command->most_arguments) {
        std::fprintf(stderr, "corvane: %s does not take \"%s\"\n", line.command.c_str(),
                     line.arguments[command->most_arguments].c_str());
        return kUsageError;
    }
    Session session(line.session);
    if (const std::string problem = session.Start(); !problem.empty()) {
        std::fprintf(stderr, "corvane: %s\n", problem.c_str());
        return kUsageError;
    }
    return command->run(session, line);
}

} // namespace host
