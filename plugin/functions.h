// Handlers of the functions that belong to no medium: version, settings and the last error.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>

namespace corvane {

FM_Error Version(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                 FM_Data& result);
FM_Error GetLastError(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                      FM_Data& result);
FM_Error Get(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters, FM_Data& result);
FM_Error Set(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters, FM_Data& result);

} // namespace corvane
