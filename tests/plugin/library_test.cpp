// The library as a host loads it: through its one export, again and again in one process.
#include "tests/support/calls.h"
#include "tests/support/environment_variable.h"
#include "tests/support/fake_host.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <dlfcn.h>
#include <thread>

namespace corvane {
namespace {

struct Library : testing::Test {
    Library() {
        fm::Session& session = fm::CurrentSession();
        session.drives = {{"C:", ""}};
        session.application_file = drives.MakeFile("host");
        session.application_version = "10.0v1";
        host.block.interface_version = 51;
    }

    test::FakeHost host;
    test::ScratchDrives drives;
};

TEST_F(Library, IsLoadedAndUnloadedManyTimes) {
    for (int round = 0; round < 100; ++round) {
        host.registered.clear();
        host.unregistered.clear();
        void* library = dlopen(CORVANE_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        host.block.instance = library;
        const auto entry = reinterpret_cast<FM_EntryPoint>(dlsym(library, "FMExternCallProc"));
        ASSERT_NE(entry, nullptr);
        host.block.selector = kFM_CallStartUp;
        entry(&host.block);
        ASSERT_EQ(host.block.result, 51) << round;
        ASSERT_EQ(host.registered.size(), 61U) << round;
        const auto version = host.registered.front().handler;
        EXPECT_EQ(test::Call(version, {test::TextValue("long")}, 1).text, "Corvane 10.0.3");
        EXPECT_EQ(test::Call(host.registered[12].handler, {}, 13).text, "$0:")
            << "no state of an earlier load";
        EXPECT_EQ(test::Call(host.registered[20].handler, {}, 21).error, -50);
        host.block.selector = kFM_CallShutdown;
        entry(&host.block);
        EXPECT_EQ(host.unregistered.size(), 96U);
        dlclose(library);
    }
    EXPECT_EQ(dlopen(CORVANE_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr)
        << "something keeps the library loaded";
}

// A sound of a second, of silence.
std::string Wave() {
    const auto number = [](std::uint32_t value) {
        return std::string(reinterpret_cast<const char*>(&value), sizeof(value));
    };
    constexpr std::uint32_t kRate = 44'100;
    const std::string samples(std::size_t{2} * kRate, '\0');
    return "RIFF" + number(36 + 2 * kRate) + "WAVEfmt " + number(16) + number(0x00010001) + number(kRate) +
           number(2 * kRate) + number(0x00100002) + "data" + number(2 * kRate) + samples;
}

TEST_F(Library, IsUnloadedWhileItPlaysAndRecords) {
    constexpr std::size_t kPlaySound = 1; // places among the registered functions
    constexpr std::size_t kRecordSoundStart = 16;
    const test::EnvironmentVariable driver("SDL_AUDIODRIVER", "dummy");
    const FM_Data sound = test::TextValue("/C:" + drives.MakeFile("s.wav", Wave()));
    const FM_Data target = test::TextValue("/C:" + drives.Path("r.mov"));
    host.file_path = u"file:/C:/Untitled.fp7";
    std::thread([] {}).join(); // a sanitizer adds a thread of its own to the first one
    const auto threads = test::CountThreads();
    for (int round = 0; round < 100; ++round) {
        host.registered.clear();
        void* library = dlopen(CORVANE_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        host.block.instance = library;
        const auto entry = reinterpret_cast<FM_EntryPoint>(dlsym(library, "FMExternCallProc"));
        host.block.selector = kFM_CallStartUp;
        entry(&host.block);
        const auto call = [&](std::size_t function, std::initializer_list<FM_Data> values) {
            return test::Call(host.registered[function].handler, values, host.registered[function].id);
        };
        EXPECT_EQ(call(kPlaySound, {sound, test::TextValue("1")}).text, "$0:Media_PlaySound: No error.");
        EXPECT_EQ(call(kRecordSoundStart, {target, test::TextValue("1")}).error, 0);
        if (round % 10 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(50));
        fm::CurrentSession().dispatch_messages();
        host.block.selector = kFM_CallShutdown;
        entry(&host.block);
        EXPECT_FALSE(fm::CurrentSession().dispatch_messages);
        EXPECT_EQ(test::CountThreads(threads), threads) << round;
        dlclose(library);
    }
    EXPECT_EQ(dlopen(CORVANE_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr);
}

} // namespace
} // namespace corvane
