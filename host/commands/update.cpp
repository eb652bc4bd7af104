#include "host/commands/commands.h"
#include "host/commands/interruption.h"
#include "host/commands/open_table.h"
#include "host/commands/progress_line.h"
#include "host/fields/run_log.h"
#include "host/fields/worker_pool.h"

#include <cstdio>
#include <deque>

namespace host {
namespace {

// The numbers of a run's records that are still to do, one after the other.
class RecordList {
public:
    RecordList(Records& records, RunLog& log) : records_(records), log_(log) {}

    std::optional<std::int64_t> Next() {
        while (problem_.empty()) {
            if (at_ == portion_.size() && !Fill()) break;
            after_ = portion_[at_++];
            if (!log_.IsDone(after_)) return after_;
        }
        return std::nullopt;
    }
    [[nodiscard]] const std::string& Problem() const { return problem_; }

private:
    bool Fill() {
        constexpr std::size_t kPortion = 1000;
        problem_ = records_.Numbers(after_, log_.LastRecord(), kPortion, portion_);
        at_ = 0;
        return problem_.empty() && !portion_.empty();
    }

    Records& records_;
    RunLog& log_;
    std::vector<std::int64_t> portion_;
    std::size_t at_ = 0;
    std::int64_t after_ = 0; ///< the record that was looked at last
    std::string problem_;
};

// The command that starts a worker for the same work as this process's own.
std::vector<std::string> WorkerCommand(const CommandLine& line) {
    const SessionOptions& session = line.session;
    std::vector<std::string> command = {fm::CurrentSession().application_file,
                                        "worker",
                                        "--progress=never",
                                        "--interface-version=" + std::to_string(session.interface_version),
                                        "--host-version=" + session.host_version,
                                        std::string("--hidden=") +
                                            (session.hidden_marks ? "marked" : "named"),
                                        std::string("--ui=") + (session.windows ? "gtk" : "none")};
    if (!line.table.where.empty()) command.push_back("--where=" + line.table.where);
    if (!session.plugin.empty()) command.push_back("--plugin=" + session.plugin);
    for (const fm::Drive& drive : session.drives)
        command.push_back("--drive=" + drive.root + '=' + (drive.remote ? "remote:" : "") +
                          (drive.folder.empty() ? "/" : drive.folder));
    for (const std::string& answer : session.answers) command.push_back("--answer=" + answer);
    command.emplace_back("--");
    command.insert(command.end(), line.arguments.begin(), line.arguments.end());
    return command;
}

// What makes two runs the same work: the calculations and the condition.
std::string WorkText(const CommandLine& line) {
    std::string text;
    for (std::size_t i = 2; i < line.arguments.size(); ++i) text += line.arguments[i] + '\n';
    return text + "where " + line.table.where;
}

class Updater {
public:
    Updater(Session& session, const CommandLine& line) : engine_(session.GetEngine()), line_(line) {}

    int Run() {
        if (std::string problem = Prepare(); !problem.empty()) return CommandFailed(problem);
        RecordWorker worker(engine_, table_.Values(), table_.GetTable(), work_);
        if (!Parses(engine_, work_)) return kUsageError;

        std::int64_t count = 0;
        std::int64_t last = 0;
        std::string problem = table_.GetRecords().Count(count);
        if (problem.empty()) problem = table_.GetRecords().LastNumber(last);
        log_.emplace(table_.GetConnection());
        if (problem.empty())
            problem = log_->Begin(table_.GetTable(), WorkText(line_), last, line_.table.resume);
        if (!problem.empty()) return CommandFailed(problem);

        const Interruption interruption;
        ProgressLine progress(count, line_.session.progress, log_->DoneCount());
        RecordList list(table_.GetRecords(), *log_);
        problem = line_.table.jobs == 1 ? DoHere(worker, list, progress) : DoInPool(list, progress);
        if (problem.empty()) problem = list.Problem();
        if (problem.empty() && !Interruption::IsWished()) problem = log_->Finish();
        if (log_->FailedCount() > 0)
            progress.Complain("corvane: records that failed: " + std::to_string(log_->FailedCount()));
        if (!problem.empty()) return CommandFailed(problem);
        if (Interruption::IsWished()) return Interruption::ExitStatus();
        return log_->FailedCount() > 0 ? 1 : 0;
    }

private:
    std::string Prepare() {
        if (line_.arguments.size() < 3) return "update needs a database file, a table and FIELD=CALCULATION";
        std::string problem = table_.Open(line_);
        if (!problem.empty()) return problem;
        auto calculations = ParseFieldCalculations(
            table_.GetTable(), {line_.arguments.begin() + 2, line_.arguments.end()}, problem);
        if (calculations) work_ = {line_.table.where, std::move(*calculations)};
        return problem;
    }

    std::string DoHere(RecordWorker& worker, RecordList& list, ProgressLine& progress) {
        while (!Interruption::IsWished()) {
            const auto record = list.Next();
            if (!record) break;
            if (std::string problem = Store(worker.Do(*record), progress); !problem.empty()) return problem;
        }
        return {};
    }

    std::string DoInPool(RecordList& list, ProgressLine& progress) {
        WorkerPool pool(table_.GetTable(), WorkerCommand(line_), line_.table.jobs,
                        [&] { return list.Next(); });
        while (true) {
            if (Interruption::IsWished()) pool.Stop();
            auto result = pool.Next();
            if (!result) return pool.Problem();
            if (std::string problem = Store(std::move(*result), progress); !problem.empty()) return problem;
        }
    }

    // A record's new values and the note that it is done come into the file together, or not at all.
    std::string Store(RecordResult result, ProgressLine& progress) {
        progress.Step();
        if (!result.chosen) return {};
        for (const FieldChange& change : result.changes) {
            if (result.failure) break;
            std::string refusal = table_.GetRecords().Refusal(change.value);
            if (!refusal.empty())
                result.failure = RecordFailure{table_.GetTable().fields[change.field].name,
                                               {},
                                               kFM_ErrorOutOfMemory,
                                               std::move(refusal)};
        }
        if (result.failure)
            progress.Complain("record " + std::to_string(result.record) + ": " + result.failure->Text());
        Transaction transaction(table_.GetConnection());
        if (!transaction.Good()) return table_.GetConnection().Problem();
        if (!result.failure)
            if (std::string problem = table_.GetRecords().Change(result.record, result.changes);
                !problem.empty())
                return problem;
        if (std::string problem = log_->Note(result.record, result.failure.has_value()); !problem.empty())
            return problem;
        return transaction.Commit() ? "" : table_.GetConnection().Problem();
    }

    Engine& engine_;
    const CommandLine& line_;
    OpenTable table_;
    RecordWork work_;
    std::optional<RunLog> log_;
};

} // namespace

int Update(Session& session, const CommandLine& line) {
    return Updater(session, line).Run();
}

} // namespace host
