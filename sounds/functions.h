// Handlers of the sound functions, one a source file of its name.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>

namespace corvane {

FM_Error ExtractInfo(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                     FM_Data& result);

} // namespace corvane
