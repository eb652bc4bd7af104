// Numbers as parameters of the image functions: any value, in the host's conversion to a number.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>

namespace corvane {

double ReadNumber(const FM_DataVect& parameters, std::int32_t index);
std::int32_t ReadInteger(const FM_DataVect& parameters, std::int32_t index);

} // namespace corvane
