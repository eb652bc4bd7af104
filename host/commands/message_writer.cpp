#include "host/commands/message_writer.h"

#include <utility>

namespace host {
namespace {

/// Their streams stay in memory meanwhile.
constexpr std::size_t kMostWaiting = 3;

} // namespace

MessageWriter::MessageWriter() : thread_([this] { Write(); }) {}

bool MessageWriter::Add(Message message) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return waiting_.size() < kMostWaiting || !good_; });
    waiting_.push_back(std::move(message));
    changed_.notify_all();
    return good_;
}

bool MessageWriter::Finish() {
    {
        const std::lock_guard lock(mutex_);
        ended_ = true;
    }
    changed_.notify_all();
    if (thread_.joinable()) thread_.join();
    return good_;
}

void MessageWriter::Write() {
    Output output;
    std::unique_lock lock(mutex_);
    while (good_) {
        changed_.wait(lock, [this] { return !waiting_.empty() || ended_; });
        if (waiting_.empty()) return;
        const Message& message = waiting_.front(); // Add leaves it where it is
        lock.unlock();
        output.Write(message.line);
        for (const auto& bytes : message.streams)
            output.Write({reinterpret_cast<const char*>(bytes->data()), bytes->size()});
        output.Flush();
        lock.lock();
        waiting_.pop_front();
        good_ = output.Good();
        changed_.notify_all();
    }
}

} // namespace host
