// How far an update has come, kept in the file together with its results, so that it can go on later.
#pragma once

#include "host/fields/catalogue.h"
#include "host/fields/connection.h"

#include <cstdint>
#include <string>

namespace host {

class RunLog {
public:
    /// The connection outlives the log.
    explicit RunLog(Connection& connection);

    /// Takes up the stopped run of the same work on that table, if there is one and `resume` says so; else
    /// begins a new one, over the records up to `last_record`. The text says what failed.
    [[nodiscard]] std::string Begin(const Table& table, const std::string& work, std::int64_t last_record,
                                    bool resume);
    /// The last record that the run goes over, and how many have failed in it so far.
    [[nodiscard]] std::int64_t LastRecord() const { return last_record_; }
    [[nodiscard]] std::int64_t FailedCount() const { return failed_; }

    /// True when the run has been through that record before it was stopped.
    [[nodiscard]] bool IsDone(std::int64_t record);
    /// How many records it has been through.
    [[nodiscard]] std::int64_t DoneCount();

    /// Notes a record in the transaction that stores its result, unless another process of the same work has
    /// come to the run's end, or begun it anew.
    [[nodiscard]] std::string Note(std::int64_t record, bool failed);
    /// Forgets the run: it has come to its end.
    [[nodiscard]] std::string Finish();

private:
    [[nodiscard]] std::string Forget(std::int64_t run);

    Connection& connection_;
    Statement done_;
    Statement notice_;
    Statement failure_;
    std::int64_t run_ = 0;
    std::int64_t last_record_ = 0;
    std::int64_t failed_ = 0;
    bool resumed_ = false;
};

} // namespace host
