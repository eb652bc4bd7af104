#include "sounds/value_parameters.h"

#include "tests/support/calls.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(TimeParameter, EndsAfter1024Characters) {
    FM_DataVect list;
    list.values.push_back(test::TextValue("0:0:" + std::string(1019, ' ') + "7x"));
    const Read<FadeTime> time = ReadTimeParameter(list, 0, TimeSign::kRefused);
    EXPECT_EQ(time.code, 0);
    EXPECT_EQ(time.value.seconds, 7 * 65536);
}

} // namespace
} // namespace corvane
