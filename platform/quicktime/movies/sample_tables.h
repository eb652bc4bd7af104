// Sample tables of movie files.
#pragma once

#include "platform/quicktime/movies/movie_model.h"

namespace qt {

/// Which data reference (index from 1) the n-th sample description speaks of.
using DescriptionReferences = std::vector<std::uint16_t>;

/// Fills `samples.runs` and the duration from the atoms of a sample table ('stbl'). The descriptions and
/// sources are there already. What lies beyond the end of its source, or claims more bytes in all than its
/// sources have, is left out; so is everything behind it.
void ReadSampleTable(std::span<const std::byte> table, OSType media_type,
                     const DescriptionReferences& references, MediaSamples& samples);

} // namespace qt
