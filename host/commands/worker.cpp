#include "host/commands/commands.h"
#include "host/commands/json.h"
#include "host/commands/message_writer.h"
#include "host/commands/open_table.h"
#include "host/commands/output.h"
#include "host/commands/results.h"
#include "host/line_reader.h"

#include <charconv>
#include <unistd.h>

namespace host {
namespace {

// Every answer is written at once: a calculation that ends the process must not take earlier answers along.
// Calculations come one a line, and each gets one line of JSON, whatever becomes of it.
int WorkOnCalculations(Session& session, const CommandLine& line) {
    Output output;
    LineReader lines(STDIN_FILENO);
    int status = 0;
    std::size_t number = 0;
    while (const auto calculation = lines.Line()) {
        ++number;
        const Outcome outcome = session.Evaluate(*calculation);
        output.Buffer() += JsonOf(*calculation, outcome) + '\n';
        output.Flush();
        if (!output.Good()) return kUsageError;
        if (line.strict && (outcome.parse_error || IsFailure(outcome))) status = 1;
        if (line.save_streams.empty()) continue;
        if (std::string problem = SaveStreams(line.save_streams, number, outcome.value); !problem.empty())
            return CommandFailed(problem);
    }
    const std::string problem = lines.Problem(number + 1);
    return problem.empty() ? status : CommandFailed(problem);
}

// Numbers of records, one a line; each gets a message with what the calculations of the command line make of
// it.
int WorkOnRecords(Session& session, const CommandLine& line) {
    OpenTable table;
    std::string problem = table.Open(line);
    if (!problem.empty()) return CommandFailed(problem);
    auto calculations =
        ParseFieldCalculations(table.GetTable(), {line.arguments.begin() + 2, line.arguments.end()}, problem);
    if (!calculations) return CommandFailed(problem);
    const RecordWork work{line.table.where, std::move(*calculations)};
    RecordWorker worker(session.GetEngine(), table.Values(), table.GetTable(), work);
    if (!Parses(session.GetEngine(), work)) return kUsageError;
    MessageWriter writer;
    LineReader lines(STDIN_FILENO);
    std::size_t number = 0;
    while (const auto text = lines.Line()) {
        ++number;
        std::int64_t record = 0;
        const auto parsed = std::from_chars(text->data(), text->data() + text->size(), record);
        if (parsed.ec != std::errc() || parsed.ptr != text->data() + text->size())
            return CommandFailed('"' + std::string(*text) + "\" is no record number");
        if (!writer.Add(MessageOf(table.GetTable(), worker.Do(record)))) return kUsageError;
    }
    if (!writer.Finish()) return kUsageError;
    problem = lines.Problem(number + 1);
    return problem.empty() ? 0 : CommandFailed(problem);
}

} // namespace

int Worker(Session& session, const CommandLine& line) {
    return line.arguments.empty() ? WorkOnCalculations(session, line) : WorkOnRecords(session, line);
}

} // namespace host
