// Calling a handler the way the host does, with values made on the spot.
#pragma once

#include "platform/fmwrapper/objects.h"
#include "platform/text/utf.h"

#include <initializer_list>
#include <string>
#include <string_view>

namespace corvane::test {

inline FM_Data TextValue(std::string_view utf8) {
    return FM_Data(utf::ToUtf16(utf8));
}

inline FM_Data NumberValue(std::string_view digits) {
    return FM_Data(fm::Decimal::FromText(digits).value());
}

inline FM_DataVect ParameterList(std::initializer_list<FM_Data> values) {
    FM_DataVect list;
    list.values = values;
    return list;
}

struct Outcome {
    FM_Error error = 0;
    FM_NativeType type = kFM_TypeInvalid;
    std::string text; ///< of the result, whatever its type
};

inline Outcome Call(FM_ExternalFunction handler, std::initializer_list<FM_Data> values, std::int16_t id = 0) {
    const FM_ExprEnv environment;
    FM_Data result;
    const FM_Error error = handler(id, environment, ParameterList(values), result);
    return {error, result.Type(), utf::ToUtf8(result.AsText().units)};
}

} // namespace corvane::test
