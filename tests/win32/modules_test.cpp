#include "platform/win32/modules.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

TEST(Modules, AreFoundBesideTheProgramOnce) {
    std::filesystem::current_path("/"); // not where the program was started
    const win32::Module sample = win32::LoadModule("sample");
    ASSERT_NE(sample.table, nullptr) << sample.reason;
    EXPECT_EQ(*static_cast<const int*>(sample.table), 42);
    EXPECT_EQ(win32::LoadModule("sample").table, sample.table);
}

TEST(Modules, SayWhyTheyAreMissing) {
    const win32::Module none = win32::LoadModule("none");
    EXPECT_EQ(none.table, nullptr);
    EXPECT_NE(none.reason.find("corvane-none.so"), std::string::npos) << none.reason;
}

} // namespace
