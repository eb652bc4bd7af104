// Handlers of the functions that belong to no single medium: version, the last error, metadata.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>

namespace corvane {

FM_Error Version(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                 FM_Data& result);
FM_Error GetLastError(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                      FM_Data& result);
/// Makes the text that GetLastError gives the result; the host's code.
FM_Error SetLastErrorResult(FM_Data& result);
/// Registered with the sound and the image functions. It is defined with the sounds, which see both media.
FM_Error GetMetadata(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                     FM_Data& result);

} // namespace corvane
