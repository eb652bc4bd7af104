// Messages about records, written to standard output by a thread of its own: while whoever reads them is busy
// with an earlier one, the next record can already be worked out.
#pragma once

#include "host/commands/output.h"
#include "host/fields/record_messages.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace host {

class MessageWriter {
public:
    MessageWriter();
    ~MessageWriter() { (void)Finish(); }
    MessageWriter(const MessageWriter&) = delete;
    MessageWriter& operator=(const MessageWriter&) = delete;

    /// Waits while too many messages are on their way. False once writing has failed.
    bool Add(Message message);
    /// Waits until all is written; false when that failed. Nothing is added afterwards.
    bool Finish();

private:
    void Write();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Message> waiting_; ///< the first is being written
    bool ended_ = false;
    bool good_ = true;
    std::thread thread_; ///< last: it uses the others
};

} // namespace host
