#pragma once

#include "platform/quicktime/image_exporters/exporter.h"

namespace qt {

struct DotsPerInch {
    std::uint32_t horizontal;
    std::uint32_t vertical;
};

/// The wanted resolution, in dots per inch; 72 when none is wanted. One that makes no sense is as the other.
inline DotsPerInch ResolutionOf(const ExportSettings& settings) {
    Fixed horizontal = settings.horizontal_resolution.value_or(0);
    Fixed vertical = settings.vertical_resolution.value_or(0);
    if (horizontal <= 0) horizontal = vertical > 0 ? vertical : 72 << 16;
    if (vertical <= 0) vertical = horizontal;
    return {static_cast<std::uint32_t>(horizontal), static_cast<std::uint32_t>(vertical)};
}

} // namespace qt
