#include "platform/win32/progress_display.h"

#include "platform/fmwrapper/session.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

constexpr std::chrono::milliseconds kOverASecond{1010};

std::string Shown(std::chrono::milliseconds wait) {
    testing::internal::CaptureStderr();
    {
        win32::ProgressDisplay display("Working");
        display.Show(0);
        std::this_thread::sleep_for(wait);
        for (const double done : {0.25, 0.251, 0.5}) display.Show(done);
    }
    return testing::internal::GetCapturedStderr();
}

TEST(ProgressDisplay, ShowsLongWorkOnOneLineAndTakesItAway) {
    const fm::Session before = fm::CurrentSession();
    fm::CurrentSession().progress = true;
    EXPECT_EQ(Shown({}), "");
    EXPECT_EQ(Shown(kOverASecond), "\r\x1b[KWorking: 25 %\r\x1b[KWorking: 50 %\r\x1b[K");
    fm::CurrentSession().progress = false;
    EXPECT_EQ(Shown(kOverASecond), "");
    fm::CurrentSession() = before;
}

} // namespace
