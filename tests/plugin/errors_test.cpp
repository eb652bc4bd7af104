#include "plugin/errors.h"

#include "plugin/functions.h"
#include "tests/support/calls.h"
#include "tests/support/fake_host.h"

#include <gtest/gtest.h>

#include <set>

namespace corvane {
namespace {

TEST(ErrorMessage, KnowsEachCodeOfItsRanges) {
    const std::string_view memory = "A serious memory related error has occured. Contact developer, please.";
    for (std::int32_t code = -117; code <= -110; ++code) EXPECT_EQ(ErrorMessage(code), memory);
    EXPECT_EQ(ErrorMessage(-118), "");
    EXPECT_EQ(ErrorMessage(-109), "Null handle has occured, contact developer, please.");
    EXPECT_EQ(ErrorMessage(-2023), ErrorMessage(-2024));
    EXPECT_EQ(ErrorMessage(-50), "Wrong parameter(s).");
    EXPECT_EQ(ErrorMessage(-50000),
              "The operation could not be finished because QuickTime would hang. To work "
              "around, enable linking media. Sorry.");
}

// A row out of order would hide from the search; this finds them all, from the first to the last.
TEST(ErrorMessage, FindsExactlyTheCodesOfItsTable) {
    const std::set<std::int32_t> gaps = {-2002, -2016, -2017, -2018, -2020,
                                         -2021, -2025, -2027, -2040, -2052};
    for (std::int32_t code = -2056; code <= -2000; ++code)
        EXPECT_EQ(ErrorMessage(code).empty(), gaps.contains(code)) << code;
    int found = 0;
    for (std::int32_t code = -60000; code <= 30000; ++code) found += !ErrorMessage(code).empty();
    EXPECT_EQ(found, 92);
}

TEST(LastErrorRecord, PutsTheFunctionsNameInFront) {
    CVSError error;
    error.SetFunctionName("Media_Amplify");
    error.SetCode(-2002);
    EXPECT_EQ(error.GetMessage(), "Media_Amplify: ") << "a code without a text";
    error.AppendMessage("Detail.");
    EXPECT_EQ(error.GetMessage(), "Media_Amplify:  Detail.");
    EXPECT_EQ(error.Fail(-50000 - 65536, "x"), 15536) << "the host takes the low 16 bits, signed";
}

TEST(LastErrorRecord, EachCallBeginsAnew) {
    BeginCall("Media_First").Fail(-43, "Gone.");
    EXPECT_EQ(LastError().GetMessage(), "Media_First: File was not found. Gone.");
    BeginCall("Media_Second");
    EXPECT_EQ(LastError().GetCode(), 0);
    EXPECT_EQ(LastError().GetMessage(), "");
}

TEST(GetLastErrorFunction, CutsALongTextAtACharacter) {
    const test::FakeHost host;
    CVSError& error = BeginCall(nullptr);
    error.SetMessage(std::string(507, 'a') +
                     "\xC3\xA4\xC3\xA4"); // "$0:" and 507 bytes leave room for one byte
    EXPECT_EQ(test::Call(GetLastError, {}).text, "$0:" + std::string(507, 'a'));
    error.SetMessage(std::string(506, 'a') + "\xC3\xA4\xC3\xA4");
    EXPECT_EQ(test::Call(GetLastError, {}).text, "$0:" + std::string(506, 'a') + "\xC3\xA4");
}

} // namespace
} // namespace corvane
