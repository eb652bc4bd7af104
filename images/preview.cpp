#include "images/preview.h"

#include "images/image_settings.h"
#include "images/streams.h"
#include "platform/quicktime/graphics_exporter.h"
#include "plugin/results.h"

#include <algorithm>

namespace corvane {
namespace {

constexpr std::int32_t kPreviewDepth = 24;

Rect Inset(const Rect& rectangle, int horizontal, int vertical) {
    const auto moved = [](std::int16_t edge, int by) { return static_cast<std::int16_t>(edge + by); };
    return {moved(rectangle.top, vertical), moved(rectangle.left, horizontal),
            moved(rectangle.bottom, -vertical), moved(rectangle.right, -horizontal)};
}

/// Null without memory.
qt::OwnedRegion PreviewMark(const Rect& bounds) {
    qt::OwnedRegion mark(NewRgn());
    const qt::OwnedRegion part(NewRgn());
    if (mark == nullptr || part == nullptr) return nullptr;
    for (const Rect& rectangle : PreviewMarkRectangles(bounds.right, bounds.bottom)) {
        RectRgn(part.get(), &rectangle);
        XorRgn(mark.get(), part.get(), mark.get());
    }
    return mark;
}

ComponentResult ExportPreview(GraphicsExportComponent exporter, GraphicsImportComponent importer,
                              const Rect& bounds, Handle output) {
    GraphicsExportSetInputGraphicsImporter(exporter, importer);
    GraphicsExportSetOutputHandle(exporter, output);
    GraphicsExportSetDontRecompress(exporter, false);
    GraphicsExportSetCompressionQuality(exporter, CurrentPreviewSettings().quality);
    GraphicsExportSetDepth(exporter, kPreviewDepth);
    if (CurrentPreviewSettings().mark) GraphicsImportSetClip(importer, PreviewMark(bounds).get());
    std::uint64_t size = 0;
    return GraphicsExportDoExport(exporter, &size);
}

} // namespace

std::array<Rect, 7> PreviewMarkRectangles(std::int16_t width, std::int16_t height) {
    const int shorter = std::min(width, height);
    const int wide = std::max(shorter / 16, 2);
    const int narrow = std::max(shorter / 128, 1);
    const Rect whole = {0, 0, height, width};
    const Rect frame = Inset(whole, width / 16, height / 16);
    const Rect columns = Inset(frame, wide, 0);
    const Rect rows = Inset(frame, 0, height / 16);
    return {whole,
            frame,
            Inset(frame, narrow, narrow),
            columns,
            Inset(columns, 0, narrow),
            rows,
            Inset(rows, narrow, 0)};
}

Preview MakePreview(GraphicsImportComponent importer) {
    Preview preview;
    GraphicsImportGetNaturalBounds(importer, &preview.bounds);
    if (CurrentPreviewSettings().quality < 0) return preview;
    ComponentInstance opened = nullptr;
    const OSErr opening_code = OpenADefaultComponent(qt::kGraphicsExporter, qt::Code("JPEG"), &opened);
    const qt::OpenComponent exporter(opened);
    if (opening_code != noErr) {
        ReportError(opening_code, "No codec for creating CV preview!");
        return preview;
    }
    preview.jpeg = qt::MemoryHandle(NewHandle(0));
    const ComponentResult code = ExportPreview(exporter.get(), importer, preview.bounds, preview.jpeg.get());
    if (code != noErr) {
        ReportError(code, "Preview creation failed");
        preview.jpeg = {};
    }
    return preview;
}

std::optional<Preview> MakePreviewOf(OSType type, Handle data) {
    ComponentInstance opened = nullptr;
    const OSErr code = OpenADefaultComponent(qt::kGraphicsImporter, type, &opened);
    const qt::OpenComponent importer(opened);
    if (code != noErr) {
        ReportError(code, "Could not find QT importer for this type.");
        return std::nullopt;
    }
    GraphicsImportSetDataHandle(opened, data);
    return MakePreview(opened);
}

void AddPreview(FM_BinaryData* container, const Preview& preview) {
    AddSizeStream(container, preview.bounds.right, preview.bounds.bottom);
    if (preview.jpeg) AddStream(container, FourCC("JPEG"), qt::HandleBytes(preview.jpeg.get()));
}

} // namespace corvane
