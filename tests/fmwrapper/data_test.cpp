#include "tests/fmwrapper/host_values.h"

#include <limits>

namespace {

NumberPointer NewNumber(double value) {
    NumberPointer number(Done(FM_FixPt_Constructor1));
    Done(FM_FixPt_AssignDouble, number.get(), value);
    return number;
}

bool Truth(const FM_Data* value) {
    const ListPointer list(Done(FM_DataVect_Constructor1));
    Done(FM_DataVect_PushBack, list.get(), value);
    return Done(FM_DataVect_AtAsBoolean, list.get(), 0);
}

} // namespace

TEST(HostData, IsEmptyTextAtFirst) {
    const DataPointer data(Done(FM_Data_Constructor1));
    EXPECT_EQ(Done(FM_Data_GetNativeType, data.get()), kFM_TypeText);
    EXPECT_TRUE(Done(FM_Data_IsEmpty, data.get()));
    EXPECT_EQ(Done(FM_BinaryData_GetCount, Done(FM_Data_GetBinaryData, data.get())), 0);
}

TEST(HostData, ConvertsBetweenNumbersAndTexts) {
    const DataPointer data = NewTextData(u"12 px");
    EXPECT_EQ(Done(FM_Data_SetAsNumber, data.get(), NewNumber(-0.75).get(), kFM_TypeNumber), kFM_ErrorNone);
    EXPECT_EQ(Done(FM_Data_GetNativeType, data.get()), kFM_TypeNumber);
    EXPECT_EQ(Units(Done(FM_Data_GetAsText, data.get())), u"-0.75");

    const ListPointer list(Done(FM_DataVect_Constructor1));
    Done(FM_DataVect_PushBack, list.get(), NewTextData(u"12 px").get());
    EXPECT_EQ(Done(FM_FixPt_AsLong, Done(FM_DataVect_AtAsNumber, list.get(), 0)), 12);
}

TEST(HostData, HasTheTruthOfItsNumberOrOfItsStreams) {
    EXPECT_TRUE(Truth(NewTextData(u"0.5 percent").get()));
    EXPECT_TRUE(Truth(NewTextData(u"-1").get()));
    for (const char16_t* text : {u"", u"true", u"0.00", u"no"}) EXPECT_FALSE(Truth(NewTextData(text).get()));
    const DataPointer container(Done(FM_Data_Constructor1));
    const BinaryPointer binary(Done(FM_BinaryData_Constructor1));
    Done(FM_Data_SetBinaryData, container.get(), binary.get(), true);
    EXPECT_FALSE(Truth(container.get()));
    AddStream(binary.get(), "JPEG", "");
    Done(FM_Data_SetBinaryData, container.get(), binary.get(), true);
    EXPECT_TRUE(Truth(container.get()));
}

TEST(HostData, CanTakeWhatItLentItselfAndKeepsItWhenOthersAreRefused) {
    const DataPointer data = NewTextData(u"kept");
    const LocalePointer locale(Done(FM_Locale_Constructor1, kFM_LocaleEnglish));
    Done(FM_Data_SetAsText, data.get(), Done(FM_Data_GetAsText, data.get()), locale.get(), kFM_TypeText);
    EXPECT_EQ(Done(FM_Data_SetAsText, data.get(), NewText(u"lost").get(), locale.get(), kFM_TypeNumber),
              kFM_ErrorWrongParameter);
    EXPECT_EQ(Units(Done(FM_Data_GetAsText, data.get())), u"kept");

    const BinaryPointer binary(Done(FM_BinaryData_Constructor1));
    AddStream(binary.get(), "PNGf", "pixels");
    Done(FM_Data_SetBinaryData, data.get(), binary.get(), true);
    Done(FM_Data_SetBinaryData, data.get(), Done(FM_Data_GetBinaryData, data.get()), true);
    EXPECT_EQ(StreamBytes(Done(FM_Data_GetBinaryData, data.get()), 0), "pixels");
}

TEST(HostDataVect, KeepsCopiesAndRefusesOtherIndexes) {
    const ListPointer list(Done(FM_DataVect_Constructor1));
    Done(FM_DataVect_PushBack, list.get(), NewTextData(u"first").get());
    Done(FM_DataVect_PushBack, list.get(), NewTextData(u"second").get());
    ASSERT_EQ(Done(FM_DataVect_Size, list.get()), 2);
    EXPECT_EQ(Units(Done(FM_DataVect_AtAsText, list.get(), 1)), u"second");
    for (const std::int32_t index : {-1, 2, std::numeric_limits<std::int32_t>::max()}) {
        EXPECT_EQ(Failure(FM_DataVect_At, list.get(), index), kFM_StatusFailed);
    }
}

TEST(HostNumber, NarrowsAsTheHostDoes) {
    const std::pair<double, std::int32_t> cases[] = {
        {1.9, 1}, {-1.9, -1}, {3e9, 2147483647}, {-3e9, -2147483647 - 1}, {1e300, 2147483647}};
    for (const auto& [value, narrowed] : cases)
        EXPECT_EQ(Done(FM_FixPt_AsLong, NewNumber(value).get()), narrowed) << value;
    EXPECT_TRUE(Done(FM_FixPt_AsBool, NewNumber(0.001).get()));
    const NumberPointer number = NewNumber(2.5);
    EXPECT_EQ(Failure(FM_FixPt_AssignDouble, number.get(), std::numeric_limits<double>::infinity()),
              kFM_StatusFailed);
    EXPECT_EQ(Done(FM_FixPt_AsFloat, number.get()), 2.5);
}
