#include "platform/win32/multimedia_timers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

struct Counter {
    std::atomic<int> firings = 0;
    std::atomic<bool> slow = false;
    std::atomic<bool> running = false;
    std::atomic<UINT> id = 0;
    std::atomic<bool> kills_itself = false;

    static void Fire(UINT id, UINT, std::uintptr_t user, std::uintptr_t, std::uintptr_t) {
        auto& counter = *reinterpret_cast<Counter*>(user);
        counter.running = true;
        if (counter.slow) std::this_thread::sleep_for(milliseconds(50));
        counter.id = id;
        if (counter.kills_itself) timeKillEvent(id);
        ++counter.firings;
        counter.running = false;
    }
    UINT Start(UINT delay, UINT resolution, UINT flags) {
        return timeSetEvent(delay, resolution, Fire, reinterpret_cast<std::uintptr_t>(this),
                            flags | TIME_KILL_SYNCHRONOUS);
    }
    void Await(int count) const {
        const auto limit = Clock::now() + std::chrono::seconds(20);
        while (firings < count && Clock::now() < limit) std::this_thread::sleep_for(milliseconds(1));
        EXPECT_GE(firings, count);
    }
};

TEST(MultimediaTimers, FireOnceOrInTheirRhythm) {
    Counter once;
    Counter often;
    const UINT first = once.Start(1, 0, TIME_ONESHOT);
    const UINT second = often.Start(1, 0, TIME_PERIODIC);
    EXPECT_NE(first, second);
    often.Await(20);
    once.Await(1);
    EXPECT_EQ(often.id, second);
    EXPECT_EQ(timeKillEvent(first), MMSYSERR_INVALPARAM) << "it has ended by itself";
    EXPECT_EQ(timeKillEvent(second), TIMERR_NOERROR);
    const int count = often.firings;
    std::this_thread::sleep_for(milliseconds(20));
    EXPECT_EQ(often.firings, count);
    EXPECT_EQ(once.firings, 1);
}

TEST(MultimediaTimers, ThatMayBeLateFireEveryTenMilliseconds) {
    Counter counter;
    const auto begin = Clock::now();
    const UINT id = counter.Start(1, 100, TIME_PERIODIC);
    counter.Await(11);
    EXPECT_GE(Clock::now() - begin, milliseconds(101));
    timeKillEvent(id);
}

TEST(MultimediaTimers, DoNotCatchUp) {
    Counter counter;
    counter.slow = true;
    const UINT id = counter.Start(1, 0, TIME_PERIODIC);
    counter.Await(3);
    counter.slow = false;
    const int count = counter.firings;
    std::this_thread::sleep_for(milliseconds(30));
    timeKillEvent(id);
    EXPECT_LE(counter.firings, count + 45) << "150 were due while the callback was slow";
}

TEST(MultimediaTimers, AreQuietOnceKilled) {
    for (int round = 0; round < 50; ++round) {
        Counter counter;
        counter.slow = round % 10 == 0;
        const UINT id = counter.Start(1, 0, round % 2 == 0 ? TIME_PERIODIC : TIME_ONESHOT);
        while (round % 3 == 0 && !counter.running && counter.firings == 0) std::this_thread::yield();
        timeKillEvent(id);
        ASSERT_FALSE(counter.running) << "the callback's data may go away now";
    }
}

TEST(MultimediaTimers, MayKillThemselves) {
    Counter counter;
    counter.kills_itself = true;
    counter.Start(1, 0, TIME_PERIODIC);
    counter.Await(1);
    std::this_thread::sleep_for(milliseconds(20));
    EXPECT_EQ(counter.firings, 1);
    Counter next;
    const UINT id = next.Start(1, 0, TIME_PERIODIC);
    next.Await(2);
    timeKillEvent(id);
}

TEST(MultimediaTimers, NeedACallbackAndADelay) {
    Counter counter;
    EXPECT_EQ(counter.Start(0, 0, TIME_PERIODIC), 0U);
    EXPECT_EQ(timeSetEvent(1, 0, nullptr, 0, TIME_ONESHOT), 0U);
}

} // namespace
