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
    /// Those of TableOptions that the command takes, each with blanks around it.
    std::string_view table_options = {};
    /// Which argument is the current database; none when it is no command on a database file.
    std::size_t database_argument = SIZE_MAX;
};

constexpr auto kCommands = std::to_array<Command>({
    {"eval", Eval, SIZE_MAX},
    {"functions", ListFunctions, 0},
    {"about", About, 0},
    {"help", Help, 1},
    {"db", Db, SIZE_MAX, "", 1},
    {"import", Import, SIZE_MAX, " as by-reference name-field ", 0},
    {"show", Show, 2, " where ", 0},
    {"update", Update, SIZE_MAX, " where jobs resume ", 0},
    {"sheet", Sheet, 3, " where to name ", 0},
    {"worker", Worker, SIZE_MAX, " where ", 0},
    {"export", Export, 3, " where to name replace ", 0},
});

// The first option that the command does not take; empty when it takes all.
std::string OptionTooMany(const Command& command, const TableOptions& options) {
    for (const std::string& name : options.given)
        if (command.table_options.find(' ' + name + ' ') == std::string_view::npos) return "--" + name;
    return {};
}

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
    if (const std::string option = OptionTooMany(*command, line.table); !option.empty()) {
        std::fprintf(stderr, "corvane: %s does not take %s\n", line.command.c_str(), option.c_str());
        return kUsageError;
    }
    SessionOptions options = line.session;
    if (command->database_argument < line.arguments.size())
        options.database = line.arguments[command->database_argument];
    Session session(options);
    if (const std::string problem = session.Start(); !problem.empty()) {
        std::fprintf(stderr, "corvane: %s\n", problem.c_str());
        return kUsageError;
    }
    return command->run(session, line);
}

} // namespace host
