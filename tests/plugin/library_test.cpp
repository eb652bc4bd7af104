// The library as a host loads it: through its one export, again and again in one process.
#include "tests/support/calls.h"
#include "tests/support/fake_host.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

namespace corvane {
namespace {

TEST(Library, IsLoadedAndUnloadedManyTimes) {
    test::FakeHost host;
    const test::ScratchDrives drives;
    fm::Session& session = fm::CurrentSession();
    session.drives = {{"C:", ""}};
    session.application_file = drives.MakeFile("host");
    session.application_version = "10.0v1";
    host.block.interface_version = 51;

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

} // namespace
} // namespace corvane
