#include "host/fields/run_log.h"

namespace host {

RunLog::RunLog(Connection& connection)
    : connection_(connection),
      done_(connection.Prepare("SELECT 1 FROM corvane_done WHERE run = ? AND record = ?")),
      notice_(connection.Prepare("INSERT OR IGNORE INTO corvane_done (run, record) "
                                 "SELECT id, ?2 FROM corvane_runs WHERE id = ?1")),
      failure_(connection.Prepare("UPDATE corvane_runs SET failed = failed + 1 WHERE id = ?")) {}

std::string RunLog::Begin(const Table& table, const std::string& work, std::int64_t last_record,
                          bool resume) {
    Transaction transaction(connection_);
    if (!transaction.Good()) return connection_.Problem();
    Statement stopped = connection_.Prepare(
        "SELECT id, last_record, failed FROM corvane_runs WHERE table_name = ? AND work = ? ORDER BY id");
    stopped.Bind(1, table.name);
    stopped.Bind(2, work);
    if (stopped.Step()) {
        run_ = stopped.Integer(0);
        last_record_ = stopped.Integer(1);
        failed_ = stopped.Integer(2);
    }
    stopped.End();
    resumed_ = resume && run_ != 0;
    if (!resumed_) {
        if (std::string problem = Forget(run_); !problem.empty()) return problem;
        // No number is given twice: another process may go on with a run after it was forgotten.
        Statement beginning =
            connection_.Prepare("INSERT INTO corvane_runs (id, table_name, work, last_record, failed) "
                                "VALUES (random(), ?, ?, ?, 0)");
        beginning.Bind(1, table.name);
        beginning.Bind(2, work);
        beginning.Bind(3, last_record);
        if (!beginning.Run()) return connection_.Problem();
        run_ = connection_.LastRow();
        last_record_ = last_record;
        failed_ = 0;
    }
    return transaction.Commit() ? "" : connection_.Problem();
}

bool RunLog::IsDone(std::int64_t record) {
    if (!resumed_) return false;
    done_.Bind(1, run_);
    done_.Bind(2, record);
    const bool done = done_.Step();
    done_.End();
    return done;
}

std::int64_t RunLog::DoneCount() {
    Statement query = connection_.Prepare("SELECT count(*) FROM corvane_done WHERE run = ?");
    query.Bind(1, run_);
    return query.Step() ? query.Integer(0) : 0;
}

std::string RunLog::Note(std::int64_t record, bool failed) {
    notice_.Bind(1, run_);
    notice_.Bind(2, record);
    if (!notice_.Run()) return connection_.Problem();
    if (!failed) return {};
    failure_.Bind(1, run_);
    ++failed_;
    return failure_.Run() ? "" : connection_.Problem();
}

std::string RunLog::Finish() {
    Transaction transaction(connection_);
    if (!transaction.Good()) return connection_.Problem();
    if (std::string problem = Forget(run_); !problem.empty()) return problem;
    return transaction.Commit() ? "" : connection_.Problem();
}

std::string RunLog::Forget(std::int64_t run) {
    for (const char* text :
         {"DELETE FROM corvane_done WHERE run = ?", "DELETE FROM corvane_runs WHERE id = ?"}) {
        Statement deletion = connection_.Prepare(text);
        deletion.Bind(1, run);
        if (!deletion.Run()) return connection_.Problem();
    }
    return {};
}

} // namespace host
