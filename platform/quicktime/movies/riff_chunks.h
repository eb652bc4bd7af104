// RIFF files (Microsoft, Multimedia Programming Interface and Data Specifications 1.0): chunks of a type, a
// 32-bit size and contents, one behind the other.
#pragma once

#include "platform/quicktime/data_source.h"
#include "platform/quicktime/types.h"

#include <optional>

namespace qt {

struct RiffChunk {
    std::uint64_t offset = 0; ///< of its contents
    std::uint64_t size = 0;   ///< of them, as far as they are there
    bool big_endian = false;  ///< their numbers, as in all of the file ("RIFX")
};

/// The first chunk of this type; nothing when the file has none, or is another one.
std::optional<RiffChunk> FindRiffChunk(DataSource& data, OSType type);

} // namespace qt
