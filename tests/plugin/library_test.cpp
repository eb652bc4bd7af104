// The library as a host loads it: through its one export, again and again in one process.
#include "tests/plugin/started_host.h"
#include "tests/support/environment_variable.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <dlfcn.h>
#include <thread>

namespace corvane {
namespace {

TEST(Library, IsUnloadedWhileItPlaysAndRecords) {
    constexpr std::int16_t kPlaySound = 2;
    constexpr std::int16_t kGetLastError = 13;
    constexpr std::int16_t kRecordSoundStart = 17;
    constexpr std::int16_t kGet = 21;
    const test::EnvironmentVariable driver("SDL_AUDIODRIVER", "dummy");
    const test::ScratchDrives drives;
    const std::string file = drives.Path("s.wav");
    ASSERT_EQ(std::system(("sox -n -r 44100 -c 1 -b 16 '" + file + "' trim 0 1").c_str()), 0);
    const FM_Data sound = test::TextValue("/C:" + file);
    const FM_Data target = test::TextValue("/C:" + drives.Path("r.mov"));
    const FM_Data name = test::TextValue("1");
    std::thread([] {}).join(); // a sanitizer adds a thread of its own to the first one
    const auto threads = test::CountThreads();
    for (int round = 0; round < 100; ++round) {
        void* library = dlopen(CORVANE_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        const auto entry = reinterpret_cast<FM_EntryPoint>(dlsym(library, "FMExternCallProc"));
        ASSERT_NE(entry, nullptr);
        test::EntryHost host(entry);
        host.block.instance = library;
        host.file_path = u"file:/C:/Untitled.fp7";
        ASSERT_EQ(host.StartUp(), 51) << round;
        EXPECT_EQ(host.registered.size(), 61U) << round;
        EXPECT_EQ(host.CallFunction(kGetLastError, {}).text, "$0:") << "no state of an earlier load";
        EXPECT_EQ(host.CallFunction(kPlaySound, {sound, name}).text, "$0:Media_PlaySound: No error.");
        EXPECT_EQ(host.CallFunction(kRecordSoundStart, {target, name}).error, 0);
        EXPECT_EQ(host.CallFunction(kGet, {}).error, -50);
        if (round % 10 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(50));
        fm::CurrentSession().dispatch_messages();
        host.Send(kFM_CallShutdown);
        EXPECT_EQ(host.unregistered.size(), 96U);
        EXPECT_FALSE(fm::CurrentSession().dispatch_messages);
        EXPECT_EQ(test::CountThreads(threads), threads) << round;
        dlclose(library);
        EXPECT_EQ(dlopen(CORVANE_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr)
            << "something keeps the library loaded";
    }
}

} // namespace
} // namespace corvane
