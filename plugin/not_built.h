// Handlers of the functions that are registered and not built yet: they say so.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>

namespace corvane {

/// Answers -4 to the host, with its message in the last-error record.
FM_Error SoundFunctionNotBuilt(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                               FM_Data& result);
/// Gives the error text of -4.
FM_Error FunctionNotBuilt(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                          FM_Data& result);

} // namespace corvane
