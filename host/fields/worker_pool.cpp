#include "host/fields/worker_pool.h"

#include "host/fields/record_messages.h"

#include <cerrno>
#include <poll.h>
#include <utility>

namespace host {
namespace {

/// Records that a worker has at most: while one is in work the next ones are on their way, and so are the
/// answers to those before it.
constexpr std::size_t kBatch = 4;
constexpr FM_Error kWorkerDied = -1;

} // namespace

WorkerPool::WorkerPool(const Table& table, std::vector<std::string> command, std::size_t size,
                       std::function<std::optional<std::int64_t>()> next_record)
    : table_(table), command_(std::move(command)), next_record_(std::move(next_record)) {
    for (std::size_t i = 0; i < size; ++i) workers_.push_back(std::make_unique<Worker>());
}

WorkerPool::~WorkerPool() {
    for (const auto& worker : workers_) (void)worker->process.End(!worker->records.empty());
}

void WorkerPool::HandOut(Worker& worker) {
    if (worker.records.empty()) worker.suspects = !suspects_.empty();
    while (!stopping_ && problem_.empty() && worker.records.size() < (worker.suspects ? 1 : kBatch)) {
        std::optional<std::int64_t> record;
        if (worker.suspects) {
            record = suspects_.front();
            suspects_.pop_front();
        } else {
            record = next_record_();
        }
        if (!record) return;
        if (!worker.process.IsRunning()) problem_ = worker.process.Start(command_);
        worker.records.push_back(*record);
        // A worker that is gone shows itself at the next reading.
        if (problem_.empty()) (void)worker.process.Send(std::to_string(*record) + '\n');
    }
}

void WorkerPool::Stop() {
    stopping_ = true;
    for (const auto& worker : workers_)
        if (worker->records.size() > 1) worker->records.resize(1);
}

// A worker that has something to say, or is gone; nullptr when none has work, or with a problem.
WorkerPool::Worker* WorkerPool::WaitForOne() {
    std::vector<pollfd> waiting;
    std::vector<Worker*> working;
    for (std::size_t i = 0; i < workers_.size(); ++i) { // each first in its turn, so that none starves
        Worker& worker = *workers_[(turn_ + i) % workers_.size()];
        if (worker.records.empty()) continue;
        if (worker.process.Lines().HasLine()) return &worker;
        working.push_back(&worker);
        waiting.push_back({worker.process.Descriptor(), POLLIN, 0});
    }
    ++turn_;
    if (working.empty()) return nullptr;
    while (::poll(waiting.data(), waiting.size(), -1) < 0) {
        if (errno == EINTR) continue;
        problem_ = std::string("cannot wait for the workers: ") + std::strerror(errno);
        return nullptr;
    }
    for (std::size_t i = 0; i < waiting.size(); ++i)
        if (waiting[i].revents != 0) return working[i];
    return nullptr;
}

std::optional<RecordResult> WorkerPool::Next() {
    std::optional<RecordResult> result;
    while (!result) {
        for (const auto& worker : workers_) HandOut(*worker);
        Worker* worker = problem_.empty() ? WaitForOne() : nullptr;
        if (worker == nullptr) return std::nullopt;
        result = TakeResult(*worker);
    }
    return result;
}

std::optional<RecordResult> WorkerPool::TakeResult(Worker& worker) {
    std::optional<RecordResult> result;
    LineReader& lines = worker.process.Lines();
    if (const auto line = lines.Line())
        result = ReadMessage(
            table_, *line, [&](std::uint8_t* buffer, std::size_t size) { return lines.Bytes(buffer, size); });
    if (!result || result->record != worker.records.front()) return Bury(worker);
    worker.has_answered = true;
    worker.records.pop_front();
    if (stopping_) (void)worker.process.End(true); // it may have begun the next one
    return result;
}

std::optional<RecordResult> WorkerPool::Bury(Worker& worker) {
    const std::string end = worker.process.End(true);
    if (!worker.has_answered && !end.starts_with("signal")) {
        problem_ = "a worker could not begin: " + end;
        return std::nullopt;
    }
    const std::deque<std::int64_t> records = std::exchange(worker.records, {});
    if (stopping_) return std::nullopt;
    if (records.size() > 1) {
        suspects_.insert(suspects_.end(), records.begin(), records.end());
        return std::nullopt;
    }
    RecordResult result{.record = records.front(), .chosen = true, .changes = {}, .failure = {}};
    result.failure = RecordFailure{"worker", {}, kWorkerDied, "the process ended with " + end};
    return result;
}

} // namespace host
