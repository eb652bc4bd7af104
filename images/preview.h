// The preview: a JPEG picture beside an image stream that hosts can't show.
#pragma once

#include "platform/quicktime/graphics_importer.h"
#include "plugin/host_data.h"

#include <array>
#include <optional>

namespace corvane {

struct Preview {
    Rect bounds;           ///< of the picture, at the origin
    qt::MemoryHandle jpeg; ///< null: there is none, for the settings say so or for a reason that is reported
};

/// Encodes the importer's picture as the preview settings say; the importer is left with the mark as its clip
/// region. It stands apart from adding it, so that the decoded picture is gone before large streams are
/// copied.
Preview MakePreview(GraphicsImportComponent importer);

/// The preview of an encoded image, a file of that type. Nothing when it can't be opened and that is
/// reported.
std::optional<Preview> MakePreviewOf(OSType type, Handle data);

/// Appends a "SIZE" stream and, when there is a picture, a "JPEG" stream.
void AddPreview(FM_BinaryData* container, const Preview& preview);

/// The rectangles of the preview mark for a picture of that size: what lies in an odd number of them is
/// painted, so that thin lines between them are not.
std::array<Rect, 7> PreviewMarkRectangles(std::int16_t width, std::int16_t height);

} // namespace corvane
