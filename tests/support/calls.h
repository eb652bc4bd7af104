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

struct Outcome {
    FM_Error error = 0;
    FM_NativeType type = kFM_TypeInvalid;
    std::string text; ///< of the result, whatever its type
};

inline Outcome Call(FM_ExternalFunction handler, std::initializer_list<FM_Data> values, std::int16_t id = 0) {
    FM_ExprEnv environment;
    FM_DataVect parameters;
    parameters.values = values;
    FM_Data result;
    const FM_Error error = handler(id, environment, parameters, result);
    return {error, result.Type(), utf::ToUtf8(result.AsText().units)};
}

} // namespace corvane::test
