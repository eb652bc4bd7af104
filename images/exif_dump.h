#pragma once

#include "images/metadata_text.h"

#include <cstddef>
#include <span>

namespace corvane {

/// Adds what the second section of JPEG data (the first is the start marker) says: the entries of its EXIF
/// directories in the EXIF library's own words, or that its content is unknown. The data may be cut behind
/// that section.
void AddExifDump(std::span<const std::byte> jpeg, MetadataText& text);

/// How much of the data AddExifDump looks at.
inline constexpr std::size_t kExifDumpBytes = 0x1'0010;

} // namespace corvane
