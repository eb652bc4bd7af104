#include "platform/win32/multimedia_timers.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

constexpr UINT kLongestStretch = 10; // ms

struct Event {
    Clock::time_point due;
    std::chrono::milliseconds period; ///< 0: fires once
    LPTIMECALLBACK callback;
    std::uintptr_t user;
};

// The thread lives while there are timers: a library that is unloaded leaves none behind.
class TimerThread {
public:
    TimerThread() = default;
    TimerThread(const TimerThread&) = delete;
    TimerThread& operator=(const TimerThread&) = delete;
    ~TimerThread() { Stop(std::unique_lock(mutex_)); }

    UINT Add(const Event& event) {
        const std::lock_guard lock(mutex_);
        try {
            if (!thread_.joinable())
                thread_ = std::jthread([this](const std::stop_token& stop) { Run(stop); });
        } catch (const std::system_error&) {
            return 0;
        }
        const UINT id = next_id_;
        next_id_ = next_id_ == kHighestId ? 1 : next_id_ + 1;
        events_[id] = event;
        changed_.notify_all();
        return id;
    }

    bool Remove(UINT id) {
        std::unique_lock lock(mutex_);
        const bool is_own_thread = std::this_thread::get_id() == thread_.get_id();
        const bool was_there = events_.erase(id) > 0;
        if (is_own_thread) return was_there;
        changed_.wait(lock, [&] { return firing_ != id; });
        if (events_.empty()) Stop(std::move(lock));
        return was_there;
    }

private:
    static constexpr UINT kHighestId = 0x7FFF'FFFF;

    void Stop(std::unique_lock<std::mutex> lock) {
        std::jthread ended = std::move(thread_);
        ended.request_stop();
        lock.unlock();
        changed_.notify_all();
    }

    void Run(const std::stop_token& stop) {
        std::unique_lock lock(mutex_);
        while (!stop.stop_requested()) {
            const auto next =
                std::ranges::min_element(events_, {}, [](const auto& entry) { return entry.second.due; });
            if (next == events_.end()) {
                changed_.wait(lock);
                continue;
            }
            const Event event = next->second;
            const Clock::time_point now = Clock::now();
            if (event.due > now) {
                changed_.wait_until(lock, event.due);
                continue;
            }
            const UINT id = next->first;
            firing_ = id;
            if (event.period.count() == 0) {
                events_.erase(next);
            } else {
                next->second.due = std::max(event.due + event.period, now);
            }
            lock.unlock();
            event.callback(id, 0, event.user, 0, 0);
            lock.lock();
            firing_ = 0;
            changed_.notify_all();
        }
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::map<UINT, Event> events_;
    UINT next_id_ = 1;
    UINT firing_ = 0; ///< the timer whose callback runs
    std::jthread thread_;
};

TimerThread& Timers() {
    static TimerThread timers;
    return timers;
}

} // namespace

MMRESULT timeSetEvent(UINT delay, UINT resolution, LPTIMECALLBACK callback, std::uintptr_t user, UINT flags) {
    if (delay == 0 || callback == nullptr) return 0;
    const UINT period = std::max(delay, std::min(resolution, kLongestStretch));
    Event event;
    event.due = Clock::now() + std::chrono::milliseconds(delay);
    event.period = std::chrono::milliseconds((flags & TIME_PERIODIC) != 0 ? period : 0);
    event.callback = callback;
    event.user = user;
    return Timers().Add(event);
}

MMRESULT timeKillEvent(UINT id) {
    return Timers().Remove(id) ? TIMERR_NOERROR : MMSYSERR_INVALPARAM;
}
