// Several workers that take records off one list.
#pragma once

#include "host/fields/record_work.h"
#include "host/fields/worker_process.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

class WorkerPool {
public:
    /// `command` starts a worker; it takes numbers of records, one a line, and answers with messages in their
    /// order. `next_record` gives one number after the other until there are no more.
    WorkerPool(const Table& table, std::vector<std::string> command, std::size_t size,
               std::function<std::optional<std::int64_t>()> next_record);

    /// Lets workers without work end in their own way, and the others at once.
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    /// The result of whichever record is done next; nullopt at the end or when something failed. A worker
    /// that dies fails the record that it had in work, and another one takes its place. Of several that it
    /// had, each is tried once more by itself.
    std::optional<RecordResult> Next();
    /// From now on the workers finish what they have in work, and no more.
    void Stop();
    /// What failed; empty when nothing did.
    [[nodiscard]] const std::string& Problem() const { return problem_; }

private:
    struct Worker {
        WorkerProcess process;
        std::deque<std::int64_t> records; ///< handed out and not answered, in order
        bool has_answered = false;
        bool suspects = false; ///< its record is one of those that a worker died over: it gets no other
    };

    void HandOut(Worker& worker);
    Worker* WaitForOne();
    std::optional<RecordResult> TakeResult(Worker& worker);
    std::optional<RecordResult> Bury(Worker& worker);

    const Table& table_;
    std::vector<std::string> command_;
    std::function<std::optional<std::int64_t>()> next_record_;
    std::vector<std::unique_ptr<Worker>> workers_;
    std::deque<std::int64_t> suspects_; ///< a dead worker had them, and one of them may be the reason
    std::size_t turn_ = 0;
    bool stopping_ = false;
    std::string problem_;
};

} // namespace host
