// Parameter readers of the sound functions: each answers a code (0, -50 for an index outside the list,
// -108 without memory) and the value. The value is meaningful only with code 0.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>
#include <string>

namespace corvane {

template <class Value>
struct Read {
    std::int32_t code = 0;
    Value value{};
};

/// Any value, in the host's conversion to text, as UTF-8.
Read<std::string> ReadTextParameter(const FM_DataVect& parameters, std::int32_t index);
Read<std::int32_t> ReadLongParameter(const FM_DataVect& parameters, std::int32_t index);
/// Held at the ends of a float's range.
Read<float> ReadNumberParameter(const FM_DataVect& parameters, std::int32_t index);

/// "1", "true", "yes", "ja", "o", "j" and "y" in any case are true; every other text is false.
Read<bool> ReadBooleanParameter(const FM_DataVect& parameters, std::int32_t index);

/// Lower case byte by byte: only the ASCII letters change.
std::string ToLowerAscii(std::string text);

} // namespace corvane
