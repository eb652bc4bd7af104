#include "plugin/parameters.h"

#include "plugin/host_data.h"
#include "tests/support/calls.h"
#include "tests/support/fake_host.h"

#include <gtest/gtest.h>

#include <limits>

namespace corvane {
namespace {

using test::ParameterList;

bool Boolean(std::string_view text) {
    const Read<bool> read = ReadBooleanParameter(ParameterList({test::TextValue(text)}), 0);
    EXPECT_EQ(read.code, 0) << text;
    return read.value;
}

TEST(Parameters, ReadBooleanWordsInAnyCase) {
    for (const char* word : {"1", "true", "TRUE", "yes", "Yes", "ja", "JA", "o", "O", "j", "J", "y", "Y"})
        EXPECT_TRUE(Boolean(word)) << word;
    for (const char* word : {"", "0", "2", "false", "no", "nein", "n", "oui", " 1", "1 ", "true\r"})
        EXPECT_FALSE(Boolean(word)) << word;
    EXPECT_TRUE(ReadBooleanParameter(ParameterList({test::NumberValue("1")}), 0).value);
}

TEST(Parameters, AnIndexOutsideTheListIsWrong) {
    const FM_DataVect list = ParameterList({FM_Data(), FM_Data(), FM_Data()});
    EXPECT_EQ(ReadTextParameter(list, 3).code, -50);
    EXPECT_EQ(ReadLongParameter(list, 3).code, -50);
    EXPECT_EQ(ReadNumberParameter(list, 3).code, -50);
    EXPECT_EQ(ReadBooleanParameter(list, 3).code, -50);
    EXPECT_EQ(ReadTextParameter(list, 2).code, 0);
    EXPECT_EQ(ReadTextParameter(list, 2).value, "");
}

TEST(Parameters, ReadAnyValueAsTextOrNumber) {
    const FM_DataVect list = ParameterList({test::NumberValue("-2.75"), test::TextValue("12 px")});
    EXPECT_EQ(ReadTextParameter(list, 0).value, "-2.75");
    EXPECT_EQ(ReadLongParameter(list, 0).value, -2);
    EXPECT_EQ(ReadNumberParameter(list, 0).value, -2.75F);
    EXPECT_EQ(ReadLongParameter(list, 1).value, 12);
}

TEST(Parameters, NumbersBeyondAFloatAreHeldAtItsEnd) {
    const FM_DataVect list = ParameterList(
        {test::NumberValue("1" + std::string(60, '0')), test::NumberValue("-1" + std::string(60, '0'))});
    EXPECT_EQ(ReadNumberParameter(list, 0).value, std::numeric_limits<float>::max());
    EXPECT_EQ(ReadNumberParameter(list, 1).value, std::numeric_limits<float>::lowest());
}

TEST(Parameters, NoTextIsCutOnItsWay) {
    std::string text;
    for (int i = 0; i < 1000; ++i) text += "\xF0\x9F\x8E\xB5";
    const FM_Data value = test::TextValue(text);
    EXPECT_EQ(ParameterAsUtf8(&value), text);
    EXPECT_EQ(ParameterAsUtf16(&value), utf::ToUtf16(text));
}

TEST(Parameters, TheDatabasesPathHasALimit) {
    test::FakeHost host;
    host.file_path = u"file:/C:/" + std::u16string(5000, u'x');
    EXPECT_EQ(EvaluateFilePath()->size(), 4095U);
}

} // namespace
} // namespace corvane
