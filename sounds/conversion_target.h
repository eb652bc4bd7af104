#pragma once

#include "files/file_spec.h"
#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>
#include <string_view>

namespace corvane {

/// Where a converted sound goes, and what the last-error record says when that can't be found.
struct ConversionTarget {
    std::int32_t code = 0;
    std::string_view message;
    XFileSpec file; ///< need not exist
};

/// Reads a path parameter: a path as for every function, else any path text that a container's reference may
/// hold. A bare name lies in the database's folder.
ConversionTarget ReadConversionTarget(const FM_DataVect& parameters, std::int32_t index);

} // namespace corvane
