#include "plugin/event_loop_timer.h"

#include "platform/win32/errors.h"
#include "platform/win32/messages.h"
#include "tests/support/fake_host.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>
#include <vector>

namespace corvane {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

struct Timers : testing::Test {
    ~Timers() override {
        for (EventLoopTimer* timer : installed) RemoveLoopTimer(timer);
    }

    static void Fired(EventLoopTimer* timer, void* user_data) {
        auto& self = *static_cast<Timers*>(user_data);
        self.fired.push_back(timer);
        self.threads_differ |= std::this_thread::get_id() != self.thread;
        if (self.reaction) self.reaction(timer);
    }
    EventLoopTimer* Install(double delay, double interval) {
        const InstalledTimer made = InstallLoopTimer(MainLoopId(), delay, interval, Fired, this);
        EXPECT_EQ(made.code, 0);
        installed.push_back(made.timer);
        return made.timer;
    }
    std::int32_t Remove(EventLoopTimer* timer) {
        std::erase(installed, timer);
        return RemoveLoopTimer(timer);
    }
    static void Pump(milliseconds length) {
        const auto end = Clock::now() + length;
        while (Clock::now() < end) {
            if (!fm::CurrentSession().dispatch_messages) return;
            fm::CurrentSession().dispatch_messages();
            if (fm::CurrentSession().wait_for_messages) fm::CurrentSession().wait_for_messages(end);
        }
    }
    void PumpUntil(std::size_t count) const {
        const auto limit = Clock::now() + std::chrono::seconds(20);
        while (fired.size() < count && Clock::now() < limit) Pump(milliseconds(1));
        EXPECT_GE(fired.size(), count);
    }

    test::FakeHost host;
    std::vector<EventLoopTimer*> installed;
    std::vector<EventLoopTimer*> fired;
    std::function<void(EventLoopTimer*)> reaction;
    bool threads_differ = false;
    std::thread::id thread = std::this_thread::get_id();
};

TEST_F(Timers, FireOnTheHostsThreadWhileItPumps) {
    EventLoopTimer* const once = Install(0.001, 0);
    EventLoopTimer* const often = Install(0, 0.1);
    EXPECT_EQ(once->periodic, 0U);
    EXPECT_EQ(often->periodic, 1U);
    PumpUntil(10);
    EXPECT_EQ(std::count(fired.begin(), fired.end(), once), 1);
    EXPECT_FALSE(threads_differ);
}

TEST_F(Timers, DoNotFloodAHostThatDoesNotPump) {
    Install(0, 1);
    std::this_thread::sleep_for(milliseconds(200));
    fm::CurrentSession().dispatch_messages();
    EXPECT_EQ(fired.size(), 1U) << "of some twenty firings";
}

TEST_F(Timers, ThatWereRemovedDoNotFireAnyMore) {
    EventLoopTimer* const timer = Install(0, 1);
    EventLoopTimer* const other = Install(5, 0); // keeps window and queue
    std::this_thread::sleep_for(milliseconds(50));
    EXPECT_EQ(Remove(timer), 0);
    Pump(milliseconds(30));
    EXPECT_TRUE(fired.empty());
    EXPECT_EQ(Remove(other), 0);
}

TEST_F(Timers, RemovedTooOftenEndTheServiceForAll) {
    EventLoopTimer* const timer = Install(0, 1);
    Install(0, 1);
    std::this_thread::sleep_for(milliseconds(30));
    EXPECT_EQ(Remove(timer), 0);
    EXPECT_EQ(Remove(timer), -50);
    EXPECT_FALSE(fm::CurrentSession().dispatch_messages) << "the failed removal counted, too";
    installed.clear();
    Install(0, 1);
    Install(0, 1);
    PumpUntil(2);
}

TEST_F(Timers, ComeAndGoInsideTheirProcedures) {
    EventLoopTimer* const first = Install(0, 1);
    EventLoopTimer* second = nullptr;
    reaction = [&](EventLoopTimer* timer) {
        if (timer == first) {
            Remove(first); // the only one: window and list go, too
            second = Install(0, 1);
        } else {
            Remove(timer);
        }
    };
    PumpUntil(2);
    EXPECT_EQ(fired.size(), 2U);
    EXPECT_EQ(fired[1], second);
    EXPECT_FALSE(fm::CurrentSession().dispatch_messages);
}

TEST_F(Timers, LeaveNoThreadBehind) {
    std::thread([] {}).join(); // a sanitizer adds a thread of its own to the first one
    const auto before = test::CountThreads();
    for (int round = 0; round < 100; ++round) {
        EventLoopTimer* const timer = Install(0, 1);
        if (round % 10 == 0) PumpUntil(fired.size() + 1);
        EXPECT_EQ(Remove(timer), 0);
    }
    EXPECT_EQ(test::CountThreads(before), before);
}

TEST_F(Timers, IgnoreMessagesThatAreNotTheirs) {
    EventLoopTimer* const timer = Install(30, 0);
    // The window's handle is nobody's business but the service's: windows are numbered from 1.
    const auto post = [](UINT message, WPARAM word, WPARAM parameter) {
        int taken = 0;
        for (std::intptr_t window = 1; window < 1000; ++window)
            taken +=
                PostMessageA(reinterpret_cast<HWND>(window), message, word, static_cast<LPARAM>(parameter));
        return taken;
    };
    const auto address = reinterpret_cast<WPARAM>(timer);
    EXPECT_EQ(post(WM_USER, address, address), 1);
    post(WM_USER + 1, ~address, address);
    post(WM_USER, ~(address + 8), address + 8);
    fm::CurrentSession().dispatch_messages();
    EXPECT_TRUE(fired.empty());
    post(WM_USER, ~address, address);
    fm::CurrentSession().dispatch_messages();
    EXPECT_EQ(fired.size(), 1U);
}

} // namespace
} // namespace corvane
