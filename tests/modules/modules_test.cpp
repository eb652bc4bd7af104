#include "platform/modules/modules.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

TEST(Modules, AreFoundBesideTheProgramOnce) {
    std::filesystem::current_path("/"); // not where the program was started
    const modules::Module sample = modules::Load("sample");
    ASSERT_NE(sample.table, nullptr) << sample.reason;
    EXPECT_EQ(*static_cast<const int*>(sample.table), 42);
    EXPECT_EQ(modules::Load("sample").table, sample.table);
}

TEST(Modules, SayWhyTheyAreMissing) {
    const modules::Module none = modules::Load("none");
    EXPECT_EQ(none.table, nullptr);
    EXPECT_NE(none.reason.find("corvane-none.so"), std::string::npos) << none.reason;
}

} // namespace
