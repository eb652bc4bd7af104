#include "host/commands/each_record.h"

#include "host/commands/interruption.h"
#include "host/commands/progress_line.h"

namespace host {

int EachChosenRecord(Engine& engine, OpenTable& table, const CommandLine& line,
                     const std::function<std::optional<RecordFailure>(std::int64_t record)>& act) {
    const RecordWork work{line.table.where, {}};
    RecordWorker worker(engine, table.Values(), table.GetTable(), work);
    if (!Parses(engine, work.condition) || !Parses(engine, line.table.name)) return kUsageError;
    std::int64_t count = 0;
    std::int64_t last = 0;
    std::string problem = table.GetRecords().Count(count);
    if (problem.empty()) problem = table.GetRecords().LastNumber(last);
    if (!problem.empty()) return CommandFailed(problem);

    int status = 0;
    const Interruption interruption;
    ProgressLine progress(count, line.session.progress);
    problem = ForEachRecord(table.GetRecords(), last, [&](std::int64_t record) {
        const RecordResult result = worker.Do(record);
        const auto failure = result.chosen && !result.failure ? act(record) : result.failure;
        if (failure) {
            progress.Complain("record " + std::to_string(record) + ": " + failure->Text());
            status = 1;
        }
        progress.Step();
        return !Interruption::IsWished();
    });
    if (!problem.empty()) return CommandFailed(problem);
    return Interruption::IsWished() ? Interruption::ExitStatus() : status;
}

} // namespace host
