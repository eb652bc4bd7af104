// The preview: a JPEG picture beside an image stream that hosts can't show.
#pragma once

#include "platform/quicktime/graphics_importer.h"
#include "plugin/host_data.h"

#include <array>

namespace corvane {

/// Appends a "SIZE" stream of the importer's natural bounds and, unless the preview settings say otherwise, a
/// "JPEG" stream of its picture. A failure is reported, and what was appended so far stays. The importer is
/// left with the preview's clip region.
void AddPreview(FM_BinaryData* container, GraphicsImportComponent importer);

/// The rectangles of the preview mark for a picture of that size: what lies in an odd number of them is
/// painted, so that thin lines between them are not.
std::array<Rect, 7> PreviewMarkRectangles(std::int16_t width, std::int16_t height);

} // namespace corvane
