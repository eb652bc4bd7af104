// Where a recording goes.
#pragma once

#include "files/file_spec.h"
#include "files/intermediate_file.h"
#include "platform/fmwrapper/fmwrapper.h"
#include "plugin/errors.h"

#include <cstdint>
#include <optional>

namespace corvane {

/// A file that is there. None where nothing is to be recorded.
struct RecordingTarget {
    std::optional<XFileSpec> file;
    IntermediateFile made; ///< the same file, when it was not there before: it goes unless it is to be kept
    bool is_temporary = false; ///< made in the temporary folder
};

/// Reads the first parameter: a path, or nothing, an empty text or 0 for a file in the temporary folder; any
/// other number is no target. Makes the file when it is missing. On failure the record has code and message.
FM_Error ReadRecordingTarget(const FM_DataVect& parameters, RecordingTarget& target, CVSError& error);

/// Whether the target can be recorded into. -43 when it is gone or its disk can't be reached, -61 when it may
/// not be written to or is being recorded into; else the platform's number.
std::int32_t CheckRecordingTarget(const XFileSpec& file);

} // namespace corvane
