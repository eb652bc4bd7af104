// Host objects for the tests of the data interface: made through it, and given back at the end of the scope.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"
#include "platform/text/utf.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

/// Calls an operation that has to succeed.
template <class Result, class... Parameters, class... Arguments>
Result Done(Result (*operation)(Parameters...), Arguments... arguments) {
    FM_Status status = -1;
    if constexpr (std::is_void_v<Result>) {
        operation(arguments..., &status);
        EXPECT_EQ(status, kFM_StatusOk);
    } else {
        Result result = operation(arguments..., &status);
        EXPECT_EQ(status, kFM_StatusOk);
        return result;
    }
}

/// The status of an operation that has to fail, and answers nothing.
template <class Result, class... Parameters, class... Arguments>
FM_Status Failure(Result (*operation)(Parameters...), Arguments... arguments) {
    FM_Status status = kFM_StatusOk;
    if constexpr (std::is_void_v<Result>) {
        operation(arguments..., &status);
    } else {
        EXPECT_EQ(operation(arguments..., &status), Result());
    }
    return status;
}

template <auto Delete>
struct Deleter {
    void operator()(auto* object) const { Done(Delete, object); }
};

using TextPointer = std::unique_ptr<FM_Text, Deleter<FM_Text_Delete>>;
using DataPointer = std::unique_ptr<FM_Data, Deleter<FM_Data_Delete>>;
using ListPointer = std::unique_ptr<FM_DataVect, Deleter<FM_DataVect_Delete>>;
using NumberPointer = std::unique_ptr<FM_FixPt, Deleter<FM_FixPt_Delete>>;
using QuadPointer = std::unique_ptr<FM_QuadChar, Deleter<FM_QuadChar_Delete>>;
using BinaryPointer = std::unique_ptr<FM_BinaryData, Deleter<FM_BinaryData_Delete>>;
using LocalePointer = std::unique_ptr<FM_Locale, Deleter<FM_Locale_Delete>>;

inline TextPointer NewText(std::u16string_view units) {
    TextPointer text(Done(FM_Text_Constructor1));
    Done(FM_Text_AssignUnicodeWithLength, text.get(), units.data(), static_cast<std::int32_t>(units.size()));
    return text;
}

inline std::u16string Units(const FM_Text* text) {
    std::u16string units(static_cast<std::size_t>(Done(FM_Text_GetSize, text)), u'\0');
    Done(FM_Text_GetUnicode, text, units.data(), 0, kFM_ToEnd);
    return units;
}

inline DataPointer NewTextData(std::u16string_view units) {
    DataPointer data(Done(FM_Data_Constructor1));
    const LocalePointer locale(Done(FM_Locale_Constructor1, kFM_LocaleEnglish));
    EXPECT_EQ(Done(FM_Data_SetAsText, data.get(), NewText(units).get(), locale.get(), kFM_TypeText),
              kFM_ErrorNone);
    return data;
}

inline QuadPointer NewQuad(std::string_view characters) {
    return QuadPointer(
        Done(FM_QuadChar_Constructor2, characters[0], characters[1], characters[2], characters[3]));
}

inline void AddStream(FM_BinaryData* binary, std::string_view type, std::string_view bytes) {
    EXPECT_EQ(Done(FM_BinaryData_Add, binary, NewQuad(type).get(), static_cast<std::uint32_t>(bytes.size()),
                   bytes.data()),
              kFM_ErrorNone);
}

inline std::string StreamBytes(const FM_BinaryData* binary, std::int32_t index) {
    std::string bytes(Done(FM_BinaryData_GetSize, binary, index), '\0');
    EXPECT_EQ(Done(FM_BinaryData_GetData, binary, index, 0U, static_cast<std::uint32_t>(bytes.size()),
                   bytes.data()),
              kFM_ErrorNone);
    return bytes;
}
