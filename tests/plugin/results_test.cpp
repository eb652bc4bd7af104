#include "plugin/results.h"

#include "platform/fmwrapper/fault.h"
#include "tests/support/calls.h"
#include "tests/support/fake_host.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

class Results : public testing::Test {
protected:
    static std::string Finish() {
        FM_Data result;
        FinishResult(result);
        return utf::ToUtf8(result.AsText().units);
    }

    test::FakeHost host;
};

TEST_F(Results, TheLastErrorStands) {
    AppendResultBufferText("half a result");
    ReportError(-43, "first");
    ReportError(20103, "Empty Container");
    EXPECT_EQ(Finish(), "$20103:Empty Container");
    ReportError(0, "Cancel");
    EXPECT_EQ(Finish(), "$0:Cancel");
}

TEST_F(Results, AnErrorTextIsCutAtACharacter) {
    ReportError(-43, std::string(300, 'x'));
    EXPECT_EQ(Finish(), "$-43:" + std::string(194, 'x'));
    ReportError(-43, std::string(193, 'x') + "\xE2\x82\xAC" + "y");
    EXPECT_EQ(Finish(), "$-43:" + std::string(193, 'x'));
}

TEST_F(Results, TextThatTheHostHasNoMemoryForIsLeftOut) {
    SetResultBufferText("kept");
    fm::FailOperation(0, kFM_StatusNoMemory, "ResizeMemoryBlock");
    AppendResultBufferText(" lost");
    EXPECT_EQ(Finish(), "kept");
    fm::FailOperation(0, kFM_StatusNoMemory, "NewMemoryBlock");
    AppendResultBufferText("lost");
    EXPECT_EQ(Finish(), "");
}

TEST_F(Results, AContainerDropsTheText) {
    SetResultBufferText("text");
    FM_BinaryData container;
    container.reference = u"image:a.jpg";
    FM_Data result;
    SetContainerResult(result, &container);
    EXPECT_EQ(result.Type(), kFM_TypeContainer);
    EXPECT_EQ(utf::ToUtf8(result.AsContainer().reference), "image:a.jpg");
    EXPECT_EQ(ResultBufferSize(), 0);
}

TEST_F(Results, ChecksParameterCounts) {
    const FM_DataVect none = test::ParameterList({});
    const FM_DataVect two = test::ParameterList({test::TextValue("a"), test::TextValue("b")});
    EXPECT_FALSE(CheckParameterCount(none, 0));
    EXPECT_FALSE(CheckParameterCount(two, 2));
    EXPECT_FALSE(CheckParameterCount(two, -1));
    EXPECT_EQ(ResultBufferSize(), 0);
    EXPECT_TRUE(CheckParameterCount(two, 0));
    EXPECT_EQ(Finish(), "$20100:Requires no parameters");
    EXPECT_TRUE(CheckParameterCount(two, 1));
    EXPECT_EQ(Finish(), "$20100:Requires exactly one parameter");
    EXPECT_TRUE(CheckParameterCount(none, 9));
    EXPECT_EQ(Finish(), "$20100:Requires exactly 9 parameters");
}

} // namespace
} // namespace corvane
