#include "platform/win32/keyboard.h"

#include "platform/fmwrapper/session.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace {

using std::chrono::milliseconds;

TEST(Keyboard, KeysAreDownForASecond) {
    auto& input = fm::CurrentSession().input;
    const auto now = std::chrono::steady_clock::now();
    input = {{now - milliseconds(1500), "escape"}, {now - milliseconds(10), "control+."}, {now, ""}};
    input.push_back({now + std::chrono::minutes(1), "right button"});
    EXPECT_GE(GetAsyncKeyState(VK_ESCAPE), 0) << "it was pressed too long ago";
    EXPECT_LT(GetAsyncKeyState(VK_CONTROL), 0);
    EXPECT_LT(GetAsyncKeyState(VK_OEM_PERIOD), 0);
    EXPECT_LT(GetAsyncKeyState(VK_LBUTTON), 0);
    EXPECT_LT(GetAsyncKeyState(VK_LBUTTON), 0) << "looking does not let go";
    EXPECT_GE(GetAsyncKeyState(VK_RBUTTON), 0) << "not yet";
    win32::FlushInput();
    EXPECT_GE(GetAsyncKeyState(VK_CONTROL), 0);
    EXPECT_EQ(input.size(), 1U) << "what is to come stays";
    input.clear();
}

TEST(Keyboard, ReturnOnATerminalIsTheLeftButton) {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(terminal >= 0 && grantpt(terminal) == 0 && unlockpt(terminal) == 0);
    const int person = open(ptsname(terminal), O_RDWR | O_NOCTTY);
    ASSERT_GE(person, 0);
    const int input = dup(STDIN_FILENO);
    dup2(person, STDIN_FILENO);
    EXPECT_GE(GetAsyncKeyState(VK_LBUTTON), 0);
    EXPECT_EQ(write(terminal, "\n", 1), 1);
    EXPECT_LT(GetAsyncKeyState(VK_LBUTTON), 0);
    EXPECT_GE(GetAsyncKeyState(VK_RBUTTON), 0);
    win32::FlushInput();
    EXPECT_GE(GetAsyncKeyState(VK_LBUTTON), 0);
    dup2(input, STDIN_FILENO);
    for (const int file : {input, person, terminal}) close(file);
}

} // namespace
