#include "platform/win32/mutexes.h"

#include "platform/win32/file_handles.h"
#include "tests/win32/error_of.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

TEST(Mutexes, KeepOtherThreadsOutUntilEveryHoldIsReleased) {
    const HANDLE mutex = CreateMutexA(nullptr, TRUE, nullptr);
    ASSERT_NE(mutex, nullptr);
    EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0) << "a second hold";
    std::thread([&] {
        EXPECT_EQ(WaitForSingleObject(mutex, 10), WAIT_TIMEOUT);
        EXPECT_EQ(ErrorOf(ReleaseMutex(mutex)), ERROR_NOT_OWNER);
    }).join();
    EXPECT_TRUE(ReleaseMutex(mutex));
    std::thread([&] { EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_TIMEOUT); }).join();
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_FALSE(ReleaseMutex(mutex));
    EXPECT_TRUE(CloseHandle(mutex));
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_FAILED);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST(Mutexes, LetOneThreadAtATimeIn) {
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, nullptr);
    int count = 0; // not atomic: the mutex is what guards it
    {
        const auto work = [&] {
            for (int i = 0; i < 10'000; ++i) {
                WaitForSingleObject(mutex, INFINITE);
                ++count;
                ReleaseMutex(mutex);
            }
        };
        const std::jthread first(work);
        const std::jthread second(work);
    }
    EXPECT_EQ(count, 20'000);
    CloseHandle(mutex);
}

} // namespace
