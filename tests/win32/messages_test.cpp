#include "platform/win32/messages.h"

#include "platform/fmwrapper/session.h"
#include "tests/win32/error_of.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

struct Received {
    HWND window;
    UINT message;
    WPARAM word;
    LPARAM parameter;

    bool operator==(const Received&) const = default;
};

std::vector<Received> g_received;
std::function<void()> g_reaction; // runs with each message

LRESULT Receive(HWND window, UINT message, WPARAM word, LPARAM parameter) {
    g_received.push_back({window, message, word, parameter});
    if (g_reaction) g_reaction();
    return DefWindowProcA(window, message, word, parameter);
}

struct Messages : testing::Test {
    Messages() {
        g_received.clear();
        g_reaction = nullptr;
        window_class.hInstance = this;
        window_class.lpfnWndProc = Receive;
        window_class.lpszClassName = "sample";
        RegisterClassExA(&window_class);
    }
    ~Messages() override {
        for (HWND window : windows) DestroyWindow(window);
        UnregisterClassA("sample", this);
    }
    HWND Make() {
        windows.push_back(
            CreateWindowExA(0, "sample", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, this, nullptr));
        return windows.back();
    }
    static void Dispatch() { fm::CurrentSession().dispatch_messages(); }

    WNDCLASSEXA window_class;
    std::vector<HWND> windows;
};

TEST_F(Messages, ReachTheirWindowInOrderWhenTheHostPumps) {
    const HWND first = Make();
    const HWND second = Make();
    std::thread([&] { PostMessageA(first, 0x400, 1, -1); }).join();
    PostMessageA(second, 0x401, 2, -2);
    EXPECT_TRUE(g_received.empty());
    Dispatch();
    EXPECT_EQ(g_received, (std::vector<Received>{{first, 0x400, 1, -1}, {second, 0x401, 2, -2}}));
}

TEST_F(Messages, PostedByAProcedureWaitForTheNextRound) {
    const HWND window = Make();
    g_reaction = [&] { PostMessageA(window, 0x400, 0, 0); };
    PostMessageA(window, 0x400, 0, 0);
    Dispatch();
    EXPECT_EQ(g_received.size(), 1U);
    Dispatch();
    EXPECT_EQ(g_received.size(), 2U);
}

TEST_F(Messages, OfADestroyedWindowAreGone) {
    const HWND window = Make();
    const HWND other = Make();
    g_reaction = [&] { DestroyWindow(window); };
    for (HWND target : {window, window, other}) PostMessageA(target, 0x400, 0, 0);
    Dispatch();
    ASSERT_EQ(g_received.size(), 2U);
    EXPECT_EQ(g_received[1].window, other);
    EXPECT_EQ(ErrorOf(PostMessageA(window, 0x400, 0, 0)), ERROR_INVALID_WINDOW_HANDLE);
    EXPECT_FALSE(DestroyWindow(window));
    DestroyWindow(other);
    EXPECT_FALSE(fm::CurrentSession().dispatch_messages) << "without windows there is no queue to pump";
}

TEST_F(Messages, WakeAHostThatWaits) {
    const HWND window = Make();
    const auto begin = Clock::now();
    fm::CurrentSession().wait_for_messages(begin + std::chrono::milliseconds(30));
    EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(30));
    std::jthread poster([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        PostMessageA(window, 0x400, 0, 0);
    });
    fm::CurrentSession().wait_for_messages(begin + std::chrono::minutes(1));
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(30));
    Dispatch();
    EXPECT_EQ(g_received.size(), 1U);
}

TEST_F(Messages, AreRefusedWhenNobodyPumps) {
    const HWND window = Make();
    for (int i = 0; i < 10'000; ++i) ASSERT_TRUE(PostMessageA(window, 0x400, 0, 0));
    EXPECT_EQ(ErrorOf(PostMessageA(window, 0x400, 0, 0)), ERROR_NOT_ENOUGH_QUOTA);
}

TEST_F(Messages, ClassesBelongToTheirInstance) {
    EXPECT_EQ(ErrorOf(RegisterClassExA(&window_class)), ERROR_CLASS_ALREADY_EXISTS);
    EXPECT_EQ(ErrorOf(CreateWindowExA(0, "sample", "", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr)),
              ERROR_CLASS_DOES_NOT_EXIST);
    Make();
    EXPECT_EQ(ErrorOf(UnregisterClassA("sample", this)), ERROR_CLASS_HAS_WINDOWS);
}

} // namespace
