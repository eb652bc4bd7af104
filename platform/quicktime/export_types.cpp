// The list of what images can be exported to.
#include "platform/quicktime/graphics_importer.h"
#include "platform/quicktime/image_exporters/exporter.h"

namespace qt {
namespace {

OSErr AddExportType(QTAtomContainer container, std::int32_t id, const ImageExporter& exporter) {
    std::array<std::byte, 4> type{};
    for (std::size_t i = 0; i < type.size(); ++i) {
        type[i] = static_cast<std::byte>(exporter.types.front() >> (24 - 8 * i));
    }
    const auto text = [](std::string_view characters) { return std::as_bytes(std::span(characters)); };
    QTAtom entry = 0;
    OSErr code = QTInsertChild(container, kParentAtomIsContainer, Code("expo"), id, {}, &entry);
    if (code == noErr) code = QTInsertChild(container, entry, Code("ftyp"), 1, type, nullptr);
    if (code == noErr)
        code = QTInsertChild(container, entry, Code("ext "), 1, text(exporter.extension), nullptr);
    if (code == noErr)
        code = QTInsertChild(container, entry, Code("desc"), 1, text(exporter.description), nullptr);
    return code;
}

} // namespace
} // namespace qt

ComponentResult GraphicsImportGetExportImageTypeList(GraphicsImportComponent, QTAtomContainer* container) {
    OSErr code = QTNewAtomContainer(container);
    if (code != noErr) return code;
    std::int32_t id = 0;
    for (const qt::ImageExporter* exporter : qt::ImageExporters()) {
        if (code == noErr) code = qt::AddExportType(*container, ++id, *exporter);
    }
    if (code != noErr) {
        QTDisposeAtomContainer(*container);
        *container = nullptr;
    }
    return code;
}
