#include "plugin/errors.h"

#include "plugin/functions.h"
#include "tests/support/calls.h"
#include "tests/support/fake_host.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

// A row out of order would hide from the search; this finds them all, from the first to the last.
TEST(ErrorMessage, FindsEveryRowOfItsTable) {
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
